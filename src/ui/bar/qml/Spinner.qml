import QtQuick
import QtQuick.Shapes

// Something is under way. It turns in steps, which cost next to nothing.
Item {
    id: spinner

    property color color: "gray"
    property real size: 16

    implicitWidth: size
    implicitHeight: size

    Shape {
        id: arc
        width: 24
        height: 24
        transformOrigin: Item.TopLeft
        scale: spinner.size / 24
        ShapePath {
            fillColor: "transparent"
            strokeColor: Qt.rgba(spinner.color.r, spinner.color.g, spinner.color.b, 0.25)
            strokeWidth: 3
            PathAngleArc { centerX: 12; centerY: 12; radiusX: 9; radiusY: 9; startAngle: 0; sweepAngle: 360 }
        }
        ShapePath {
            fillColor: "transparent"
            strokeColor: spinner.color
            strokeWidth: 3
            capStyle: ShapePath.RoundCap
            PathAngleArc { centerX: 12; centerY: 12; radiusX: 9; radiusY: 9; startAngle: -90; sweepAngle: 90 }
        }
    }
    Timer {
        interval: 70
        repeat: true
        running: spinner.visible
        onTriggered: spinner.rotation = (spinner.rotation + 30) % 360
    }
}
