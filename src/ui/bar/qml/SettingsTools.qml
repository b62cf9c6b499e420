import QtQuick

ScrollPane {
    id: pane

    required property var model
    readonly property var tools: model.tools

    Words {
        objectName: "toolsProblem"
        theme: pane.theme
        kind: "problem"
        width: parent.width
        visible: text !== ""
        text: pane.tools.problem
    }
    Repeater {
        model: pane.tools.sections.length
        Column {
            id: section
            required property int index
            readonly property var each: pane.tools.sections[index]
            width: parent.width
            spacing: 8
            Words {
                theme: pane.theme
                kind: "heading"
                width: parent.width
                text: section.each.title
            }
            Words {
                theme: pane.theme
                kind: "note"
                width: parent.width
                visible: text !== ""
                text: section.each.text
            }
            TextLink {
                objectName: "learnMore"
                theme: pane.theme
                visible: section.each.text !== ""
                text: "Learn More"
                onClicked: pane.model.openLink("homebrew")
            }
            Panel {
                theme: pane.theme
                Repeater {
                    model: section.each.rows.length
                    ToolRow {
                        required property int index
                        theme: pane.theme
                        each: section.each.rows[index]
                        onInstallAsked: pane.tools.install(each.name)
                        onUninstallAsked: pane.tools.uninstall(each.name)
                        onUrlAsked: url => pane.model.openUrl(url)
                    }
                }
            }
            Item { width: 1; height: 8 }
        }
    }
}
