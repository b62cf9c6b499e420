import QtQuick

// One line of a check list: whether it holds, and the button that sees to it.
//
//     SetUpRow { theme: theme; text: "The accessibility bus answers"; isDone: false; canAct: true; act: "Set Up" }
Item {
    id: row

    required property var theme
    property string text: ""
    property string detail: ""  // shown as long as it isn't done
    property bool isDone: false
    property bool isOptional: false
    property bool canAct: false
    property string act: ""

    signal asked()

    width: parent ? parent.width : 0
    implicitHeight: Math.max(48, label.height + 20)

    Rectangle {
        visible: row.y > 0
        x: 48
        width: row.width - 48
        height: 1
        color: row.theme.line
        opacity: 0.7
    }
    Symbol {
        objectName: "sign"
        x: 16
        anchors.verticalCenter: parent.verticalCenter
        size: 20
        name: row.isDone ? "checkmark.circle.fill" : !row.isOptional ? "exclamationmark.triangle"
            : row.canAct ? "plus" : "info.circle"
        color: row.isDone ? row.theme.named("green") : row.isOptional ? row.theme.secondary : row.theme.named("orange")
    }
    Column {
        id: label
        x: 48
        width: row.width - x - 16 - (button.visible ? button.width + 12 : 0)
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2
        Words {
            theme: row.theme
            width: parent.width
            text: row.text
        }
        Words {
            objectName: "detail"
            theme: row.theme
            kind: "note"
            width: parent.width
            visible: row.detail !== "" && !row.isDone
            text: row.detail
        }
    }
    PlainButton {
        id: button
        objectName: "act"
        visible: row.canAct && !row.isDone
        anchors.right: parent.right
        anchors.rightMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        width: 84
        theme: row.theme
        text: row.act
        onClicked: row.asked()
    }
}
