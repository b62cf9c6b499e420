import QtQuick

ScrollPane {
    id: pane

    required property var model

    Panel {
        theme: pane.theme
        PanelRow {
            theme: pane.theme
            text: "Toggle Prompt Window:"
            ShortcutRecorder {
                objectName: "recorder"
                theme: pane.theme
                shortcut: pane.model.shortcut
            }
        }
        Item {
            visible: pane.model.shortcut.problem !== ""
            width: parent.width
            height: problem.height + 12
            Words {
                id: problem
                objectName: "shortcutProblem"
                theme: pane.theme
                kind: "problem"
                x: 16
                width: parent.width - 32
                horizontalAlignment: Text.AlignRight
                text: pane.model.shortcut.problem
            }
        }
        PanelRow {
            theme: pane.theme
            CheckRow {
                objectName: "launchAtLogin"
                theme: pane.theme
                isSwitch: true
                width: pane.width - 80
                text: "Open Brindlet at login"
                isOn: pane.model.launchAtLogin
                onAsked: isOn => pane.model.launchAtLogin = isOn
            }
        }
        PanelRow {
            theme: pane.theme
            CheckRow {
                objectName: "translucent"
                theme: pane.theme
                isSwitch: true
                width: pane.width - 80
                text: "Translucent background"
                isOn: pane.model.isTranslucent
                onAsked: isOn => pane.model.isTranslucent = isOn
            }
        }
    }
    Item { width: 1; height: 4 }
    PlainButton {
        objectName: "permissions"
        anchors.horizontalCenter: parent.horizontalCenter
        theme: pane.theme
        text: "Configure System Permissions"
        onClicked: pane.model.reRunPermissions()
    }
    Words {
        theme: pane.theme
        kind: "problem"
        width: parent.width
        visible: text !== ""
        horizontalAlignment: Text.AlignHCenter
        text: pane.model.problem
    }
}
