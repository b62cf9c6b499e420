import QtQuick
import QtQuick.Templates as T

// A text field of one line.
//
//     Field { theme: theme; placeholderText: "API key"; echoMode: TextInput.Password; onTextEdited: ... }
T.TextField {
    id: field

    required property var theme
    property bool isBare: false  // without ground and frame, for those who draw their own

    implicitWidth: 200
    implicitHeight: 28
    leftPadding: isBare ? 0 : 8
    rightPadding: leftPadding
    topPadding: 0
    bottomPadding: 0
    verticalAlignment: TextInput.AlignVCenter
    font.pixelSize: theme.body
    color: theme.primary
    placeholderTextColor: theme.tertiary
    selectionColor: theme.accent
    selectedTextColor: theme.accentText
    selectByMouse: true
    clip: true

    Text {
        x: field.leftPadding
        width: field.width - field.leftPadding - field.rightPadding
        height: field.height
        visible: field.length === 0 && field.preeditText === ""
        text: field.placeholderText
        textFormat: Text.PlainText
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        font: field.font
        color: field.placeholderTextColor
    }
    background: Rectangle {
        visible: !field.isBare
        radius: field.theme.radius
        color: field.theme.field
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? field.theme.accent : field.theme.line
    }
}
