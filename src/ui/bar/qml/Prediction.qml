import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Window

// What a command would do, above the bar: a window of its own, since the bar has no room for it.
Window {
    id: popover

    required property var model
    required property var theme
    required property var anchorWindow

    readonly property var signs: ({"apple.terminal": "❯", "applescript": "§", "arrow.down.circle.fill": "↓",
        "arrow.right": "→", "character.cursor.ibeam": "⌶", "checkmark": "✓", "clock": "◷", "delete.left": "⌫",
        "exclamationmark": "!", "eye": "◉", "gearshape": "⚙", "list.clipboard": "▤", "network": "⇅", "pencil": "✎",
        "play": "▸", "plus": "+", "power": "⏻", "printer": "⎙", "shippingbox": "▣", "trash": "♲", "xmark.octagon": "⊗"})

    width: Math.min(560, anchorWindow.width)
    height: Math.min(content.implicitHeight + 32, Screen.height / 2)
    x: anchorWindow.x + (anchorWindow.width - width) / 2
    y: anchorWindow.y - height - 4
    flags: Qt.FramelessWindowHint | Qt.Tool
    color: "transparent"
    visible: model.isPredictionShown && ["awaitingConfirmation", "complete", "presentingError"].includes(model.promptState)

    Connections {
        target: popover.model
        function onChanged() {
            if (command.text !== popover.model.command)
                command.text = popover.model.command
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: 14
        color: popover.theme.surface
        border.color: popover.theme.line

        ColumnLayout {
            id: content
            anchors.fill: parent
            anchors.margins: 16
            spacing: 10

            Label {
                text: popover.model.request
                textFormat: Text.PlainText
                font.pixelSize: 16
                font.bold: true
                color: popover.theme.primary
                wrapMode: Text.Wrap
                Layout.fillWidth: true
            }
            Label {
                text: popover.model.runsText
                color: popover.theme.secondary
            }
            TextField {
                id: command
                objectName: "command"
                Layout.fillWidth: true
                font.family: "monospace"
                color: popover.theme.primary
                background: Rectangle {
                    radius: 8
                    color: popover.theme.panel
                    border.color: command.activeFocus ? popover.theme.accent : popover.theme.line
                }
                onTextEdited: popover.model.editCommand(text)
                onAccepted: popover.model.confirm()
                Keys.onEscapePressed: popover.model.escape()
                Keys.onPressed: event => {
                    if (event.key === Qt.Key_R && (event.modifiers & Qt.ControlModifier)) {
                        popover.model.refine()
                        event.accepted = true
                    }
                }
            }
            Label {
                text: "Brindlet predicts:"
                font.weight: Font.DemiBold
                color: popover.theme.primary
            }
            Rectangle {
                Layout.fillWidth: true
                Layout.fillHeight: true
                implicitHeight: Math.min(list.contentHeight + 20, 320)
                radius: 10
                color: popover.theme.panel
                border.color: popover.theme.line
                ListView {
                    id: list
                    anchors.fill: parent
                    anchors.margins: 10
                    clip: true
                    spacing: 6
                    model: popover.model.rows
                    ScrollBar.vertical: ScrollBar {}
                    delegate: RowLayout {
                        required property var modelData
                        width: ListView.view.width
                        spacing: 8
                        Label {
                            text: modelData.icon === "" ? "" : (popover.signs[modelData.icon] || "•")
                            visible: modelData.icon !== ""
                            color: popover.theme.named(modelData.color)
                            font.pixelSize: 15
                            Layout.preferredWidth: 18
                            Layout.alignment: Qt.AlignTop
                        }
                        ColumnLayout {
                            Layout.fillWidth: true
                            spacing: 1
                            Label {
                                text: modelData.text
                                textFormat: Text.PlainText
                                color: popover.theme.primary
                                wrapMode: Text.Wrap
                                Layout.fillWidth: true
                            }
                            Label {
                                visible: text !== ""
                                text: modelData.subtitle
                                textFormat: Text.PlainText
                                color: popover.theme.secondary
                                font.pixelSize: 12
                                wrapMode: Text.Wrap
                                Layout.fillWidth: true
                            }
                        }
                    }
                }
            }
            RowLayout {
                Layout.fillWidth: true
                Button {
                    text: "Refine request..."
                    flat: true
                    onClicked: popover.model.refine()
                }
                Item { Layout.fillWidth: true }
                Button {
                    visible: popover.model.promptState === "awaitingConfirmation"
                    enabled: popover.model.canConfirm
                    text: popover.model.confirmTitle
                    highlighted: true
                    onClicked: popover.model.confirm()
                }
            }
        }
    }
}
