import QtQuick

// The program's picture in one colour, as it stands in a panel.
Item {
    id: mark

    property real size: 18
    property color color: "black"

    width: size
    height: size

    Rectangle {
        x: mark.size * 0.14
        y: mark.size * 0.12
        width: mark.size * 0.72
        height: mark.size * 0.42
        radius: mark.size * 0.1
        color: "transparent"
        border.width: Math.max(1, mark.size * 0.085)
        border.color: mark.color
    }
    Rectangle {
        x: mark.size * 0.04
        y: mark.size * 0.64
        width: mark.size * 0.92
        height: mark.size * 0.24
        radius: height / 2
        color: mark.color
    }
}
