import QtQuick
import QtQuick.Window

// For support: what is granted, and what asks for it or takes it back.
Window {
    id: window

    required property var model

    width: 440
    height: column.height + 48
    title: "Permissions Test"
    color: windowTheme.surface
    onVisibleChanged: if (visible) model.refresh()

    Theme { id: windowTheme }

    Column {
        id: column
        x: 24
        y: 24
        width: parent.width - 48
        spacing: 16

        Panel {
            theme: windowTheme
            PanelRow {
                objectName: "accessibility"
                theme: windowTheme
                text: window.model.accessibilityText
            }
            PanelRow {
                objectName: "appleEvents"
                theme: windowTheme
                text: window.model.appleEventsText
            }
        }
        Grid {
            columns: 2
            columnSpacing: 12
            rowSpacing: 8
            Repeater {
                model: [{name: "resetAccessibility", text: "Reset Accessibility"},
                        {name: "resetAppleEvents", text: "Reset AppleEvents"},
                        {name: "promptForAccessibility", text: "Prompt for Accessibility"},
                        {name: "promptForAppleEvents", text: "Prompt for AppleEvents"}]
                PlainButton {
                    required property var modelData
                    objectName: modelData.name
                    theme: windowTheme
                    width: (column.width - 12) / 2
                    text: modelData.text
                    onClicked: window.model[modelData.name]()
                }
            }
        }
    }
    Shortcut {
        sequences: [StandardKey.Close, "Esc"]
        onActivated: window.close()
    }
}
