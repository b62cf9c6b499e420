import QtQuick

// A row of the prediction: a picture, and either a text with what is said beneath it, or a verb with the path or the
// two paths that it is about.
Item {
    id: line

    required property var theme
    required property var row
    property real verbWidth: 0    // the columns of the changes
    property real sourceWidth: 0
    readonly property bool isChange: row.verb !== undefined
    readonly property bool isMove: row.source !== undefined
    readonly property real inset: row.icon === "" ? 0 : 24

    implicitHeight: Math.max(20, isChange ? change.height : words.height)

    Symbol {
        y: 1
        visible: line.row.icon !== ""
        name: line.row.icon
        color: line.theme.named(line.row.color)
        size: 17
    }
    Column {
        id: words
        visible: !line.isChange
        x: line.inset
        y: Math.max(0, (20 - first.height) / 2)
        width: line.width - x
        spacing: 2
        Text {
            id: first
            width: parent.width
            text: line.row.text
            textFormat: Text.PlainText
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            font.pixelSize: line.theme.body
            color: line.theme.primary
        }
        Text {
            width: parent.width
            visible: text !== ""
            text: line.row.subtitle
            textFormat: Text.PlainText
            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
            maximumLineCount: 8
            elide: Text.ElideRight
            font.pixelSize: line.theme.small
            color: line.theme.secondary
        }
    }
    Loader {
        id: change
        active: line.isChange
        x: line.inset
        width: line.width - x
        sourceComponent: Item {
            implicitHeight: 20
            Text {
                id: verb
                anchors.verticalCenter: parent.verticalCenter
                width: Math.max(line.verbWidth, implicitWidth)
                text: line.row.verb
                font.pixelSize: line.theme.body
                font.bold: true
                color: line.theme.primary
            }
            ShownPath {
                id: source
                anchors.verticalCenter: parent.verticalCenter
                visible: line.isMove
                x: verb.width + 8
                width: line.isMove ? line.sourceWidth : 0
                theme: line.theme
                path: line.row.source || ({from: "folder", rest: ""})
            }
            Row {
                id: to
                anchors.verticalCenter: parent.verticalCenter
                visible: line.isMove
                x: source.x + source.width + 8
                spacing: 6
                Text {
                    text: "to"
                    font.pixelSize: line.theme.body
                    color: line.theme.secondary
                }
                Symbol {
                    anchors.verticalCenter: parent.verticalCenter
                    name: "arrow.right"
                    size: 13
                    color: line.theme.secondary
                }
            }
            ShownPath {
                anchors.verticalCenter: parent.verticalCenter
                x: line.isMove ? to.x + to.width + 8 : verb.width + 8
                width: Math.max(0, parent.width - x)
                theme: line.theme
                path: line.row.target
                isStruck: line.row.isStruck
            }
        }
    }
}
