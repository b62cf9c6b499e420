import QtQuick

// A page on which something is granted, with the list of what it needs here.
ScrollPane {
    id: page

    required property var model
    readonly property var texts: model.texts
    readonly property bool isGranted: model.state === "granted"
    readonly property bool needsHelp: model.state === "requestedMaybeNeedsHelp"

    margin: 32
    spacing: 12

    Row {
        width: parent.width
        Words {
            theme: page.theme
            kind: "title"
            width: parent.width - step.width
            text: page.texts.title || ""
        }
        Words {
            id: step
            theme: page.theme
            kind: "note"
            anchors.baseline: parent.children[0].baseline
            text: page.texts.step || ""
        }
    }
    Row {
        spacing: 8
        Words {
            theme: page.theme
            kind: "heading"
            font.pixelSize: page.theme.title
            text: page.texts.name || ""
        }
        Symbol {
            objectName: "grantedSign"
            visible: page.isGranted
            anchors.verticalCenter: parent.verticalCenter
            name: "checkmark.circle"
            size: 20
            lineWidth: 2
            color: page.theme.named("green")
        }
    }
    Words {
        theme: page.theme
        width: parent.width
        text: page.texts.text || ""
    }
    Panel {
        theme: page.theme
        visible: page.model.items.length + page.model.actions.length > 0
        Repeater {
            model: page.model.items.length
            SetUpRow {
                required property int index
                readonly property var each: page.model.items[index]
                objectName: "item" + index
                theme: page.theme
                text: each.title
                detail: each.isRequired ? "" : each.remedy
                isDone: each.holds
                isOptional: !each.isRequired
                canAct: each.canMend
                act: "Set Up"
                onAsked: page.model.mend(index)
            }
        }
        Repeater {
            model: page.model.actions.length
            SetUpRow {
                required property int index
                readonly property var each: page.model.actions[index]
                objectName: "action" + index
                theme: page.theme
                text: each.title
                isDone: each.isInstalled
                isOptional: true
                canAct: true
                act: "Install"
                onAsked: page.model.installAction(index)
            }
        }
    }
    Words {
        objectName: "problem"
        theme: page.theme
        kind: "problem"
        width: parent.width
        visible: text !== ""
        text: page.model.problem
    }
    PlainButton {
        objectName: "enableAccess"
        theme: page.theme
        height: 32
        isProminent: !page.isGranted
        enabled: !page.isGranted && page.model.state !== "requested"
        text: page.texts.button || ""
        onClicked: page.model.enableAccess()
    }
    Column {
        objectName: "help"
        width: parent.width
        spacing: 8
        visible: page.needsHelp
        onVisibleChanged: if (visible) fade.restart()
        NumberAnimation on opacity {
            id: fade
            running: false
            from: 0
            to: 1
            duration: 2000
        }
        Words {
            theme: page.theme
            kind: "heading"
            width: parent.width
            text: page.texts.help || ""
        }
        Repeater {
            model: page.model.items.length
            Words {
                required property int index
                readonly property var each: page.model.items[index]
                theme: page.theme
                kind: "note"
                width: parent.width
                visible: !each.holds && each.isRequired && each.remedy !== ""
                text: "• " + each.remedy
            }
        }
    }
}
