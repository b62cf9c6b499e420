import QtQuick

ScrollPane {
    id: pane

    required property var model

    Words {
        theme: pane.theme
        kind: "heading"
        width: parent.width
        font.pixelSize: pane.theme.title
        text: "Brindlet can run commands with or without confirmation"
    }
    Words {
        theme: pane.theme
        width: parent.width
        textFormat: Text.StyledText
        text: "What kinds of commands should run <b>without asking</b>?"
    }
    Panel {
        theme: pane.theme
        Item {
            width: parent.width
            height: columns.height + 24
            Row {
                id: columns
                x: 16
                y: 12
                spacing: 16
                Repeater {
                    model: 2
                    Column {
                        id: column
                        required property int index
                        spacing: 6
                        Repeater {
                            model: pane.model.itemsPerColumn
                            Item {
                                id: item
                                required property int index
                                readonly property int at: column.index * pane.model.itemsPerColumn + index
                                readonly property var each: pane.model.switches[at] || ({title: "", help: []})
                                width: (pane.width - 2 * pane.margin - 48) / 2
                                height: 28
                                CheckRow {
                                    objectName: "switch" + item.at
                                    theme: pane.theme
                                    text: item.each.title
                                    isOn: item.each.isOn || false
                                    isRed: item.each.isRed || false
                                    enabled: item.each.isEnabled || false
                                    width: Math.min(implicitWidth, parent.width - 24)
                                    onAsked: isOn => pane.model.setSwitch(item.at, isOn)
                                }
                                HelpButton {
                                    objectName: "help" + item.at
                                    visible: lines.length > 0
                                    anchors.right: parent.right
                                    anchors.verticalCenter: parent.verticalCenter
                                    theme: pane.theme
                                    lines: item.each.help
                                }
                            }
                        }
                    }
                }
            }
        }
    }
    Row {
        id: notice
        readonly property var content: pane.model.notice
        readonly property color color: content.color ? pane.theme.named(content.color) : pane.theme.primary
        objectName: "notice"
        visible: content.text !== undefined
        width: parent.width
        spacing: 8
        Symbol {
            name: notice.content.symbol || ""
            size: 18
            color: notice.color
        }
        Words {
            objectName: "noticeText"
            theme: pane.theme
            width: parent.width - 26
            textFormat: Text.StyledText
            text: notice.content.text || ""
            color: notice.color
        }
    }
    Words {
        theme: pane.theme
        kind: "problem"
        width: parent.width
        visible: text !== ""
        text: pane.model.problem
    }
}
