import QtQuick

Item {
    id: page

    required property var theme
    required property var model

    Column {
        anchors.centerIn: parent
        width: parent.width - 64
        spacing: 4
        Mark {
            anchors.horizontalCenter: parent.horizontalCenter
            size: 112
        }
        Item { width: 1; height: 20 }
        Words {
            theme: page.theme
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: 18
            color: page.theme.secondary
            text: page.model.texts.title || ""
        }
        Words {
            theme: page.theme
            kind: "title"
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: 38
            font.weight: Font.Bold
            text: "Brindlet"
        }
        Item { width: 1; height: 4 }
        Words {
            theme: page.theme
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: 15
            color: page.theme.secondary
            text: page.model.texts.text || ""
        }
    }
}
