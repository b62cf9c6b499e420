import QtQuick
import QtQuick.Templates as T

// Shows the hot key; pressed, it takes the next combination of keys for it.
//
//     ShortcutRecorder { theme: theme; shortcut: model.shortcut }
T.AbstractButton {
    id: recorder

    required property var theme
    required property var shortcut  // text, problem, isRecording
    readonly property bool hasShortcut: shortcut.text !== "" && !shortcut.isRecording

    implicitWidth: 168
    implicitHeight: 28
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Button
    Accessible.name: "Shortcut: " + label.text
    onClicked: shortcut.beginRecording()
    onActiveFocusChanged: if (!activeFocus) shortcut.endRecording()
    Keys.onShortcutOverride: event => event.accepted = shortcut.isRecording
    Keys.onPressed: event => {
        if (shortcut.isRecording) {
            event.accepted = true
            shortcut.press(event.key, event.modifiers)
        } else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            event.accepted = true
            shortcut.beginRecording()
        }
    }

    background: Rectangle {
        radius: recorder.theme.radius
        color: recorder.theme.field
        border.width: recorder.shortcut.isRecording || recorder.visualFocus ? 2 : 1
        border.color: recorder.shortcut.isRecording || recorder.visualFocus ? recorder.theme.accent
                    : recorder.hovered ? recorder.theme.tertiary : recorder.theme.line
    }
    Text {
        id: label
        anchors.fill: parent
        anchors.leftMargin: 28
        anchors.rightMargin: 28
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
        textFormat: Text.PlainText
        text: recorder.shortcut.isRecording ? "Press keys…" : recorder.shortcut.text || "Record shortcut"
        font.pixelSize: recorder.theme.body
        color: recorder.hasShortcut ? recorder.theme.primary : recorder.theme.secondary
    }
    T.AbstractButton {
        objectName: "clearShortcut"
        visible: recorder.hasShortcut || recorder.shortcut.isRecording
        anchors.right: parent.right
        width: 28
        height: parent.height
        hoverEnabled: true
        Accessible.name: "Remove the shortcut"
        onClicked: {
            recorder.shortcut.beginRecording()
            recorder.shortcut.press(Qt.Key_Backspace, Qt.NoModifier)
        }
        Symbol {
            anchors.centerIn: parent
            name: "xmark.circle.fill"
            size: 14
            color: parent.hovered ? recorder.theme.secondary : recorder.theme.tertiary
        }
    }
}
