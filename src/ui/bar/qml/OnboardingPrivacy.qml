import QtQuick

Item {
    id: page

    required property var theme
    required property var model

    Column {
        anchors.centerIn: parent
        width: parent.width - 96
        spacing: 20
        Symbol {
            anchors.horizontalCenter: parent.horizontalCenter
            name: "checkmark.shield"
            size: 64
            lineWidth: 1.4
            color: page.theme.accent
        }
        Words {
            objectName: "privacyText"
            theme: page.theme
            width: parent.width
            textFormat: Text.StyledText
            font.pixelSize: page.theme.large
            lineHeight: 1.25
            text: page.model.texts.text || ""
        }
        TextLink {
            objectName: "privacyLink"
            theme: page.theme
            text: page.model.texts.link || ""
            onClicked: page.model.openLink()
        }
    }
}
