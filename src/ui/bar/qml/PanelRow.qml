import QtQuick

// A row of a panel: what it is about on the left, what is set on the right.
//
//     PanelRow { theme: theme; text: "Toggle Prompt Window:"; ShortcutRecorder { ... } }
Item {
    id: row

    required property var theme
    property string text: ""
    property string detail: ""
    property real labelWidth: 0  // 0: as wide as there is room
    default property alias content: holder.data

    width: parent ? parent.width : 0
    implicitHeight: Math.max(44, holder.childrenRect.height + 16, labels.implicitHeight + 16)

    Rectangle {
        visible: row.y > 0
        x: 16
        width: row.width - 16
        height: 1
        color: row.theme.line
        opacity: 0.7
    }
    Column {
        id: labels
        x: 16
        width: row.labelWidth > 0 ? row.labelWidth : row.width - holder.width - 48
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2
        Words {
            theme: row.theme
            width: parent.width
            visible: text !== ""
            text: row.text
        }
        Words {
            theme: row.theme
            kind: "note"
            width: parent.width
            visible: text !== ""
            text: row.detail
        }
    }
    Item {
        id: holder
        width: row.labelWidth > 0 ? row.width - row.labelWidth - 48 : childrenRect.width
        height: childrenRect.height
        anchors.right: parent.right
        anchors.rightMargin: 16
        anchors.verticalCenter: parent.verticalCenter
    }
}
