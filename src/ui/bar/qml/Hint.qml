import QtQuick
import QtQuick.Window

// What is said of the thing under the pointer: a window, since a bar has no room around it. Made when it is first
// needed, by whoever shows it:
//
//     Loader { active: isHinting; source: "Hint.qml"; onLoaded: { item.theme = theme; item.text = tip; item.showAt(this) } }
Window {
    id: hint
    objectName: "hint"

    property var theme: null
    property string text: ""
    readonly property real longest: 420

    flags: Qt.ToolTip | Qt.FramelessWindowHint | Qt.WindowDoesNotAcceptFocus | Qt.WindowTransparentForInput
    color: theme ? theme.panel : "white"
    width: Math.ceil(label.width) + 16
    height: Math.ceil(label.height) + 8
    visible: false

    // Beneath the item, within its screen.
    function showAt(item) {
        const window = item.Window.window
        if (!window || text === "")
            return
        const corner = item.mapToItem(null, 0, 0)
        const screen = item.Screen
        const left = window.x + corner.x + (item.width - width) / 2
        const below = window.y + corner.y + item.height + 6
        x = Math.max(screen.virtualX + 4, Math.min(left, screen.virtualX + screen.width - width - 4))
        y = below + height <= screen.virtualY + screen.height ? below : window.y + corner.y - height - 6
        visible = true
    }

    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border.color: hint.theme ? hint.theme.line : "gray"
    }
    TextMetrics {
        id: metrics
        font: label.font
        text: hint.text
    }
    Text {
        id: label
        anchors.centerIn: parent
        width: Math.min(Math.ceil(metrics.advanceWidth) + 1, hint.longest)
        text: hint.text
        textFormat: Text.PlainText
        wrapMode: Text.WrapAtWordBoundaryOrAnywhere
        maximumLineCount: 12
        elide: Text.ElideRight
        font.pixelSize: hint.theme ? hint.theme.small : 11
        color: hint.theme ? hint.theme.primary : "black"
    }
}
