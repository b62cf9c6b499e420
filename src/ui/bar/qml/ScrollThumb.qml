import QtQuick

// Where one is in what is longer than its place.
Rectangle {
    required property Flickable flickable
    required property var theme

    anchors.right: flickable.right
    anchors.rightMargin: 2
    y: flickable.y + 2 + flickable.visibleArea.yPosition * (flickable.height - 4)
    width: 4
    height: Math.max(16, flickable.visibleArea.heightRatio * (flickable.height - 4))
    radius: 2
    visible: flickable.visibleArea.heightRatio < 1
    color: theme.faded(theme.primary, flickable.moving || flickable.dragging ? 0.45 : 0.22)
}
