import QtQuick

Item {
    id: pane

    required property var theme
    required property var model

    Column {
        anchors.centerIn: parent
        width: parent.width - 48
        spacing: 4

        Mark {
            anchors.horizontalCenter: parent.horizontalCenter
            size: 88
        }
        Item { width: 1; height: 12 }
        Words {
            theme: pane.theme
            kind: "title"
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: "Brindlet"
        }
        Words {
            objectName: "version"
            theme: pane.theme
            kind: "note"
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: pane.model.versionText
        }
        Item { width: 1; height: 16 }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 20
            Repeater {
                model: pane.model.aboutLinks
                TextLink {
                    required property var modelData
                    objectName: "link " + modelData.label
                    theme: pane.theme
                    text: modelData.label
                    onClicked: pane.model.openUrl(modelData.url)
                }
            }
        }
        Item { width: 1; height: 20 }
        PlainButton {
            objectName: "showErrorLogs"
            anchors.horizontalCenter: parent.horizontalCenter
            theme: pane.theme
            text: "Show Error Logs"
            onClicked: pane.model.showErrorLogs()
        }
    }
}
