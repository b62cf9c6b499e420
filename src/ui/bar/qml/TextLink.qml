import QtQuick
import QtQuick.Templates as T

// A text that leads somewhere.
//
//     TextLink { theme: theme; text: "Learn More"; onClicked: model.openLink("homebrew") }
T.AbstractButton {
    id: link

    required property var theme
    property bool isSmall: false

    implicitWidth: Math.ceil(label.implicitWidth)
    implicitHeight: Math.ceil(label.implicitHeight) + 2
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.Link
    Accessible.name: text
    Keys.onReturnPressed: clicked()

    contentItem: Text {
        id: label
        text: link.text
        textFormat: Text.PlainText
        elide: Text.ElideRight
        font.pixelSize: link.isSmall ? link.theme.small + 1 : link.theme.body
        font.underline: link.hovered || link.visualFocus
        color: link.theme.link
    }
    HoverHandler { cursorShape: Qt.PointingHandCursor }
}
