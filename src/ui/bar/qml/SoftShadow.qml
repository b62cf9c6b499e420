import QtQuick

// The shadow of a rounded rectangle that this one lies under, falling a little downward.
Item {
    id: shadow

    property real radius: 12
    property real extent: 16
    readonly property int layers: 8

    Repeater {
        model: shadow.visible ? shadow.layers : 0
        Rectangle {
            required property int index
            readonly property real reach: shadow.extent * 0.85 * (index + 1) / shadow.layers
            x: -reach
            y: -reach + shadow.extent * 0.15
            width: shadow.width + 2 * reach
            height: shadow.height + 2 * reach
            radius: shadow.radius + reach
            color: "#000000"
            opacity: 0.035 * (1 - index / shadow.layers)
        }
    }
}
