import QtQuick
import Brindlet
import "Symbols.js" as Symbols

// The picture of a symbol name, in one colour.
//
//     Symbol { name: "checkmark.circle"; color: theme.primary; size: 16 }
SymbolPicture {
    id: symbol

    property string name: ""
    property real size: 16  // lineWidth is on the grid of 24

    readonly property var paths: Symbols.paths(name)

    implicitWidth: size
    implicitHeight: size
    color: "black"
    stroke: paths.stroke || ""
    fill: paths.fill || ""
}
