import QtQuick
import QtQuick.Controls

// A round button with a sign.
AbstractButton {
    id: button

    required property var theme
    property string tip: ""

    implicitWidth: 30
    implicitHeight: 30
    focusPolicy: Qt.NoFocus
    ToolTip.text: tip
    ToolTip.visible: hovered && tip !== ""
    ToolTip.delay: 600
    Accessible.name: tip
    contentItem: Text {
        text: button.text
        color: button.theme.primary
        font.pixelSize: 16
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
    background: Rectangle {
        radius: width / 2
        color: button.pressed ? button.theme.line : button.hovered ? button.theme.panel : "transparent"
    }
}
