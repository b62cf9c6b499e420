import QtQuick
import QtQuick.Window

// A rounded window above something, within its screen, and beneath it where there is no room above.
Window {
    id: popover

    required property var theme
    required property bool hasCompositor
    property rect above  // what it stands above, in the screen's coordinates
    property rect screenArea
    property real contentWidth: 320
    property real contentHeight: 200
    property bool isTransient: false  // goes when the keyboard goes elsewhere
    readonly property real shade: hasCompositor ? 16 : 0  // room for the shadow
    readonly property real gap: 6
    readonly property real roomAbove: above.y - gap - screenArea.y
    readonly property bool isBeneath: contentHeight > roomAbove
                                      && contentHeight <= screenArea.y + screenArea.height - above.y - above.height - gap
    // As tall as it may become: there is more to see than what it covers.
    readonly property real tallest: Math.min(screenArea.height - 16, Math.max(360, Math.min(screenArea.height * 0.7, roomAbove - 4)))
    default property alias content: body.data

    signal dismissed()

    flags: Qt.Tool | Qt.FramelessWindowHint
    color: "transparent"  // always: a window keeps the depth that it was made with
    width: Math.round(contentWidth + 2 * shade)
    height: Math.round(contentHeight + 2 * shade)
    x: Math.round(Math.max(screenArea.x + 4, Math.min(above.x + (above.width - contentWidth) / 2,
                                                      screenArea.x + screenArea.width - contentWidth - 4)) - shade)
    y: Math.round((isBeneath ? above.y + above.height + gap
                             : Math.max(screenArea.y + 4, above.y - gap - contentHeight)) - shade)

    onClosing: close => {
        close.accepted = false
        dismissed()
    }
    onActiveChanged: if (!active && visible && isTransient) dismissed()
    onVisibleChanged: if (visible) appearing.restart()

    SoftShadow {
        anchors.fill: ground
        visible: popover.hasCompositor
        radius: ground.radius
        extent: popover.shade
        opacity: body.opacity
    }
    Rectangle {
        id: ground
        anchors.fill: parent
        anchors.margins: popover.shade
        radius: popover.hasCompositor ? popover.theme.popoverRadius : 0
        color: popover.theme.surface
        border.color: popover.theme.line
        opacity: body.opacity
    }
    FocusScope {
        id: body
        anchors.fill: parent
        anchors.margins: popover.shade
        focus: true
    }
    NumberAnimation {
        id: appearing
        target: body
        property: "opacity"
        from: popover.hasCompositor ? 0 : 1
        to: 1
        duration: 120
    }
}
