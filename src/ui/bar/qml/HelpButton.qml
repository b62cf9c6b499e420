import QtQuick
import QtQuick.Templates as T

// A question mark that says more when it is pressed.
//
//     HelpButton { theme: theme; lines: ["Minor side effects include:", "• Network access"] }
T.AbstractButton {
    id: button

    required property var theme
    required property var lines  // the first is the heading

    implicitWidth: 20
    implicitHeight: 20
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.Button
    Accessible.name: "Help"
    Keys.onReturnPressed: clicked()
    onClicked: bubble.visible ? bubble.close() : bubble.open()

    background: Rectangle {
        radius: 10
        color: "transparent"
        border.width: button.visualFocus ? 2 : 0
        border.color: button.theme.accent
    }
    Symbol {
        anchors.centerIn: parent
        name: "questionmark.circle"
        size: 16
        color: button.hovered || bubble.visible ? button.theme.accent : button.theme.secondary
    }
    T.Popup {
        id: bubble
        objectName: "bubble"
        x: Math.round((button.width - width) / 2)
        y: button.height + 4
        margins: 8
        padding: 12
        width: implicitContentWidth + 24
        height: implicitContentHeight + 24
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent
        background: Rectangle {
            radius: button.theme.popoverRadius
            color: button.theme.surface
            border.color: button.theme.line
        }
        contentItem: Column {
            spacing: 4
            Repeater {
                model: button.lines
                Words {
                    required property int index
                    required property string modelData
                    theme: button.theme
                    kind: index === 0 ? "heading" : "body"
                    wrapMode: Text.NoWrap
                    text: modelData
                }
            }
        }
    }
}
