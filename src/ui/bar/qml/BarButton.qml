import QtQuick
import QtQuick.Templates as T

// A round button with a symbol.
//
//     BarButton { theme: theme; symbol: "gear"; tip: "Settings"; onClicked: ... }
T.AbstractButton {
    id: button

    required property var theme
    property string symbol: ""
    property string tip: ""
    property color symbolColor: theme.secondary
    property real symbolSize: 18
    property bool isFilled: false  // a disc of the accent's colour

    implicitWidth: 28
    implicitHeight: 28
    padding: 0
    focusPolicy: Qt.NoFocus
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: tip

    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            name: button.symbol
            size: button.symbolSize
            color: button.isFilled ? button.theme.accentText : button.symbolColor
            lineWidth: button.isFilled ? 2.25 : 1.75
            opacity: button.enabled ? 1 : 0.4
        }
    }
    background: Rectangle {
        radius: width / 2
        color: button.isFilled ? (!button.enabled ? button.theme.line
                                                  : button.down ? Qt.darker(button.theme.accent, 1.15) : button.theme.accent)
             : button.down || button.checked ? button.theme.press
             : button.hovered ? button.theme.hover : "transparent"
        border.width: button.visualFocus ? 2 : 0
        border.color: button.theme.accent
    }
    HintArea {
        theme: button.theme
        text: button.tip
        isHovered: button.hovered && !button.down
    }
}
