import QtQuick
import QtQuick.Templates as T

// A check box, or a switch, with its label. It shows what the model says and asks it for the change.
//
//     CheckRow { theme: theme; text: "Move files"; isOn: each.isOn; onAsked: isOn => model.setSwitch(3, isOn) }
T.AbstractButton {
    id: row

    required property var theme
    property bool isOn: false
    property bool isRed: false
    property bool isSwitch: false  // drawn at the right
    property string detail: ""
    property real detailAt: 0  // 0: beneath the label

    signal asked(bool isOn)

    implicitHeight: 28
    implicitWidth: 24 + Math.ceil(label.implicitWidth) + 4
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    opacity: enabled ? 1 : 0.5
    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: isOn
    onClicked: asked(!isOn)

    Rectangle {
        id: box
        visible: !row.isSwitch
        width: 16
        height: 16
        radius: 4
        anchors.verticalCenter: parent.verticalCenter
        color: row.isOn ? (row.isRed ? row.theme.named("red") : row.theme.accent) : row.theme.field
        border.width: row.visualFocus ? 2 : row.isOn ? 0 : 1
        border.color: row.visualFocus ? (row.isOn ? row.theme.primary : row.theme.accent)
                                      : row.hovered ? row.theme.secondary : row.theme.tertiary
        Symbol {
            visible: row.isOn
            anchors.centerIn: parent
            name: "checkmark"
            size: 13
            lineWidth: 3
            color: row.theme.accentText
        }
    }
    Rectangle {
        visible: row.isSwitch
        width: 38
        height: 22
        radius: 11
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        color: row.isOn ? row.theme.accent : row.theme.isDark ? "#55555c" : "#c9c9cf"
        border.width: row.visualFocus ? 2 : 0
        border.color: row.theme.primary
        Rectangle {
            width: 18
            height: 18
            radius: 9
            y: 2
            x: row.isOn ? 18 : 2
            color: "white"
            Behavior on x { NumberAnimation { duration: 120; easing.type: Easing.InOutQuad } }
        }
    }
    Text {
        id: label
        x: row.isSwitch ? 0 : 24
        width: Math.min(implicitWidth, row.width - x - (row.isSwitch ? 48 : 0))
        anchors.verticalCenter: parent.verticalCenter
        text: row.text
        textFormat: Text.PlainText
        elide: Text.ElideRight
        font.pixelSize: row.theme.body
        color: row.isRed ? row.theme.named("red") : row.theme.primary
    }
    Text {
        visible: text !== ""
        x: row.detailAt
        width: row.width - x
        anchors.baseline: label.baseline
        text: row.detail
        textFormat: Text.PlainText
        elide: Text.ElideRight
        font.pixelSize: row.theme.small
        color: row.theme.secondary
    }
}
