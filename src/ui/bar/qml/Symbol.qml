import QtQuick
import QtQuick.Shapes
import "Symbols.js" as Symbols

// The picture of a symbol name, in one colour.
//
//     Symbol { name: "checkmark.circle"; color: theme.primary; size: 16 }
Item {
    id: symbol

    property string name: ""
    property color color: "black"
    property real size: 16
    property real lineWidth: 1.75  // on the grid of 24

    readonly property var paths: Symbols.paths(name)

    implicitWidth: size
    implicitHeight: size
    // A Shape that is drawn by itself is not cut off where a list that it scrolls in ends.
    layer.enabled: true

    Shape {
        width: 24
        height: 24
        transformOrigin: Item.TopLeft
        scale: symbol.size / 24

        ShapePath {
            fillColor: "transparent"
            strokeColor: symbol.paths.stroke ? symbol.color : "transparent"
            strokeWidth: symbol.paths.stroke ? symbol.lineWidth : -1
            capStyle: ShapePath.RoundCap
            joinStyle: ShapePath.RoundJoin
            PathSvg { path: symbol.paths.stroke || "" }
        }
        ShapePath {
            fillColor: symbol.paths.fill ? symbol.color : "transparent"
            fillRule: ShapePath.OddEvenFill
            strokeColor: "transparent"
            strokeWidth: -1
            PathSvg { path: symbol.paths.fill || "" }
        }
    }
}
