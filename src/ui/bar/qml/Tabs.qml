import QtQuick
import QtQuick.Templates as T

// The tabs of a window: a symbol above its label each. Arrow keys go from one to the next.
//
//     Tabs { theme: theme; tabs: model.tabs; current: model.tab; onChosen: index => model.tab = index }
FocusScope {
    id: bar

    required property var theme
    required property var tabs  // {label, symbol}
    property int current: 0

    signal chosen(int index)

    implicitHeight: 72
    implicitWidth: row.implicitWidth
    Keys.onLeftPressed: chosen(Math.max(0, current - 1))
    Keys.onRightPressed: chosen(Math.min(tabs.length - 1, current + 1))

    Row {
        id: row
        anchors.centerIn: parent
        spacing: 4
        Repeater {
            model: bar.tabs
            T.AbstractButton {
                id: tab
                required property int index
                required property var modelData
                readonly property bool isCurrent: bar.current === index
                objectName: "tab" + index
                width: 92
                height: 56
                hoverEnabled: true
                focus: isCurrent
                focusPolicy: isCurrent ? Qt.TabFocus : Qt.NoFocus
                text: modelData.label
                Accessible.role: Accessible.PageTab
                Accessible.name: text
                onClicked: bar.chosen(index)

                background: Rectangle {
                    radius: bar.theme.radius
                    color: tab.isCurrent || tab.down ? bar.theme.press : tab.hovered ? bar.theme.hover : "transparent"
                    border.width: tab.visualFocus ? 2 : 0
                    border.color: bar.theme.accent
                }
                Symbol {
                    anchors.horizontalCenter: parent.horizontalCenter
                    y: 8
                    size: 24
                    lineWidth: 1.6
                    name: tab.modelData.symbol
                    color: tab.isCurrent ? bar.theme.accent : bar.theme.secondary
                }
                Text {
                    y: 36
                    width: parent.width
                    horizontalAlignment: Text.AlignHCenter
                    text: tab.text
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                    font.pixelSize: bar.theme.small
                    font.weight: tab.isCurrent ? Font.DemiBold : Font.Normal
                    color: tab.isCurrent ? bar.theme.accent : bar.theme.secondary
                }
            }
        }
    }
}
