import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Window

// All that the run printed.
Window {
    id: popover

    required property var theme
    required property var anchorWindow
    property alias text: area.text

    width: Math.min(640, anchorWindow.width)
    height: Math.max(100, Math.min(500, area.implicitHeight + 80))
    x: anchorWindow.x + (anchorWindow.width - width) / 2
    y: anchorWindow.y - height - 4
    flags: Qt.FramelessWindowHint | Qt.Tool
    color: "transparent"

    Rectangle {
        anchors.fill: parent
        radius: 14
        color: popover.theme.surface
        border.color: popover.theme.line
        ColumnLayout {
            anchors.fill: parent
            anchors.margins: 14
            Label {
                text: "Full command output"
                font.bold: true
                color: popover.theme.primary
            }
            ScrollView {
                Layout.fillWidth: true
                Layout.fillHeight: true
                TextArea {
                    id: area
                    readOnly: true
                    selectByMouse: true
                    textFormat: TextEdit.PlainText
                    font.family: "monospace"
                    color: popover.theme.primary
                    background: null
                    Keys.onEscapePressed: popover.visible = false
                }
            }
        }
    }
}
