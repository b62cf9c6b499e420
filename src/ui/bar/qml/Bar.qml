import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Window

// The bar as it stands by itself: at the bottom of the screen, in the middle.
Window {
    id: bar

    required property var model

    readonly property bool isEntering: ["enteringPrompt", "enteringFollowUpPrompt", "question"].includes(model.promptState)
    readonly property var placeholders: ({enteringPrompt: "Enter query or command",
                                          enteringFollowUpPrompt: "Refine your request...", question: "Respond..."})

    width: Math.min(800, Screen.desktopAvailableWidth - 40)
    height: 85
    x: Screen.virtualX + (Screen.width - width) / 2
    y: Screen.virtualY + Screen.height - height - 48
    flags: Qt.FramelessWindowHint | Qt.Window
    color: "transparent"
    visible: true
    title: "Brindlet"

    Theme { id: theme }

    Connections {
        target: bar.model
        function onChanged() {
            if (bar.isEntering && field.text !== bar.model.prompt)
                field.text = bar.model.prompt
            if (bar.isEntering)
                field.forceActiveFocus()
            else
                result.forceActiveFocus()
        }
    }

    Rectangle {
        anchors.fill: parent
        anchors.margins: 6
        radius: 18
        color: theme.surface
        border.color: theme.line

        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 16
            anchors.rightMargin: 12
            spacing: 10

            Label {
                text: bar.model.selection
                visible: text !== ""
                color: theme.secondary
                padding: 6
                leftPadding: 10
                rightPadding: 10
                background: Rectangle {
                    radius: 8
                    color: theme.panel
                    border.color: theme.line
                }
            }

            ColumnLayout {
                visible: bar.isEntering
                Layout.fillWidth: true
                spacing: 2

                Label {
                    visible: bar.model.promptState === "question"
                    text: bar.model.statusText
                    textFormat: Text.PlainText
                    color: theme.primary
                    elide: Text.ElideRight
                    Layout.fillWidth: true
                }
                TextField {
                    id: field
                    objectName: "field"
                    Layout.fillWidth: true
                    focus: true
                    maximumLength: 250
                    font.pixelSize: 16
                    color: theme.primary
                    placeholderText: bar.placeholders[bar.model.promptState] || ""
                    placeholderTextColor: theme.secondary
                    background: null
                    onTextEdited: bar.model.setPrompt(text)
                    onAccepted: bar.model.submit()
                    Keys.onUpPressed: bar.model.historyStep(-1)
                    Keys.onDownPressed: bar.model.historyStep(1)
                    Keys.onEscapePressed: bar.model.escape()
                }
            }

            FocusScope {
                id: result
                visible: !bar.isEntering
                Layout.fillWidth: true
                Layout.fillHeight: true
                Keys.onReturnPressed: bar.model.confirmOrDismiss()
                Keys.onEnterPressed: bar.model.confirmOrDismiss()
                Keys.onEscapePressed: bar.model.escape()
                Keys.onUpPressed: bar.model.historyStep(-1)
                Keys.onDownPressed: bar.model.historyStep(1)
                Keys.onPressed: event => {
                    if (event.key === Qt.Key_R && (event.modifiers & Qt.ControlModifier)) {
                        bar.model.refine()
                        event.accepted = true
                    }
                }

                Column {
                    anchors.verticalCenter: parent.verticalCenter
                    width: parent.width
                    spacing: 6
                    Label {
                        width: parent.width
                        text: bar.model.statusText
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        font.pixelSize: 15
                        color: bar.model.promptState === "presentingError" ? theme.named("red")
                             : bar.model.promptState === "complete" ? theme.primary : theme.secondary
                    }
                    ProgressBar {
                        width: parent.width
                        visible: bar.model.progress >= 0 || bar.model.promptState === "sendingRequest"
                        indeterminate: bar.model.progress < 0
                        value: Math.max(0, bar.model.progress)
                    }
                }
            }

            BarButton {
                visible: ["awaitingConfirmation", "complete", "presentingError", "enteringFollowUpPrompt"]
                         .includes(bar.model.promptState)
                text: ({low: "ⓘ", medium: "⚠", high: "⛔"})[bar.model.risk]
                tip: "What it does"
                theme: theme
                onClicked: bar.model.showPrediction(!bar.model.isPredictionShown)
            }
            BarButton {
                visible: bar.model.promptState === "complete" && bar.model.fullOutput !== ""
                text: "≡"
                tip: "Full command output"
                theme: theme
                onClicked: output.visible = !output.visible
            }
            Button {
                visible: ["awaitingConfirmation", "complete", "presentingError"].includes(bar.model.promptState)
                text: bar.model.promptState === "complete" ? "Follow up..." : "Refine request..."
                flat: true
                onClicked: bar.model.refine()
            }
            BarButton {
                visible: bar.model.promptState !== "enteringPrompt"
                text: "✕"
                tip: "Close"
                theme: theme
                onClicked: bar.model.close()
            }
        }
    }

    Prediction {
        id: prediction
        model: bar.model
        theme: theme
        anchorWindow: bar
    }

    FullOutput {
        id: output
        theme: theme
        text: bar.model.fullOutput
        anchorWindow: bar
        visible: false
    }
}
