import QtQuick
import QtQuick.Templates as T

// A button with a text; the prominent one is what Return does. A quiet one is just its text until it is pointed at.
//
//     PlainButton { theme: theme; text: "Confirm"; isProminent: true; onClicked: ... }
T.AbstractButton {
    id: button

    required property var theme
    property bool isProminent: false
    property bool isQuiet: false
    property bool isDestructive: false

    implicitWidth: Math.max(isQuiet ? 0 : 64, Math.ceil(label.implicitWidth) + leftPadding + rightPadding)
    implicitHeight: 28
    leftPadding: isQuiet ? 8 : 14
    rightPadding: leftPadding
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.role: Accessible.Button
    Accessible.name: text
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Text {
        id: label
        text: button.text
        textFormat: Text.PlainText
        elide: Text.ElideRight
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        font.pixelSize: button.theme.body
        font.weight: button.isProminent ? Font.DemiBold : Font.Normal
        color: button.isProminent ? button.theme.accentText
             : button.isDestructive ? button.theme.named("red") : button.theme.primary
        opacity: button.enabled ? 1 : 0.45
    }
    background: Rectangle {
        radius: button.theme.radius
        color: button.isProminent ? (!button.enabled ? button.theme.faded(button.theme.accent, 0.5)
                                     : button.down ? Qt.darker(button.theme.accent, 1.15)
                                     : button.hovered ? Qt.lighter(button.theme.accent, 1.08) : button.theme.accent)
             : button.down ? button.theme.press
             : button.hovered ? button.theme.hover
             : button.isQuiet ? "transparent" : button.theme.panel
        border.width: button.visualFocus ? 2 : button.isProminent || button.isQuiet ? 0 : 1
        border.color: button.visualFocus ? (button.isProminent ? button.theme.primary : button.theme.accent)
                                         : button.theme.line
    }
}
