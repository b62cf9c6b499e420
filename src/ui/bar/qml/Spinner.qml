import QtQuick
import Brindlet

// Something is under way. It turns in steps, which cost next to nothing.
Item {
    id: spinner

    property color color: "gray"
    property real size: 16

    implicitWidth: size
    implicitHeight: size

    SymbolPicture {
        anchors.fill: parent
        stroke: "M12 3a9 9 0 1 1 0 18 9 9 0 1 1 0-18z"
        lineWidth: 3
        color: Qt.rgba(spinner.color.r, spinner.color.g, spinner.color.b, 0.25)
    }
    SymbolPicture {
        anchors.fill: parent
        stroke: "M12 3a9 9 0 0 1 9 9"
        lineWidth: 3
        color: spinner.color
    }
    Timer {
        interval: 70
        repeat: true
        running: spinner.visible
        onTriggered: spinner.rotation = (spinner.rotation + 30) % 360
    }
}
