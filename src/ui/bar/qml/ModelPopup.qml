import QtQuick
import QtQuick.Templates as T
import QtQuick.Window

// The model that is chosen, and a menu of those that can be. With none to choose from it is a button to the settings.
//
//     ModelPopup { theme: theme; sections: model.modelSections; selectedName: ...; onChosen: name => ... }
T.AbstractButton {
    id: popup

    required property var theme
    property var sections: []  // {title, models: [{name, title}]}, none of them empty
    property string selectedName: ""
    property string selectedTitle: ""  // empty: it can't be used
    property bool isBordered: false
    property bool isOnlyIcon: false
    property bool hasCompositor: false
    property bool isOpen: false
    property real standsAbove: -1  // the upper edge, in its window, that the menu stands above; below 0: its own

    signal chosen(string name)
    signal opening()
    signal settingsWanted()

    readonly property bool hasModels: sections.length > 0
    readonly property string title: !hasModels ? "Add an API key or custom model in Settings..."
                                  : selectedTitle === "" ? "No valid model" : selectedTitle

    implicitWidth: isOnlyIcon ? 28 : Math.ceil(metrics.advanceWidth) + 1 + (hasModels ? 34 : 20)
    implicitHeight: 28
    padding: 0
    hoverEnabled: true
    focusPolicy: isBordered ? Qt.TabFocus : Qt.NoFocus
    Accessible.role: Accessible.ButtonDropDown
    Accessible.name: "Model: " + title
    onClicked: {
        opening()
        if (hasModels)
            isOpen = !isOpen
        else
            settingsWanted()
    }

    TextMetrics {
        id: metrics
        font: label.font
        text: popup.title
    }
    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            visible: popup.isOnlyIcon
            name: "brain"
            size: 18
            color: popup.theme.secondary
        }
        Text {
            id: label
            visible: !popup.isOnlyIcon
            x: 10
            width: parent.width - (popup.hasModels ? 34 : 20)
            anchors.verticalCenter: parent.verticalCenter
            text: popup.title
            textFormat: Text.PlainText
            elide: Text.ElideRight
            font.pixelSize: popup.isBordered ? popup.theme.body : popup.theme.body - 1
            color: popup.isBordered ? popup.theme.primary : popup.theme.secondary
        }
        Symbol {
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            visible: popup.hasModels && !popup.isOnlyIcon
            name: "chevron.up.chevron.down"
            size: 13
            lineWidth: 2.25
            color: popup.theme.secondary
        }
    }
    background: Rectangle {
        radius: popup.isBordered ? popup.theme.radius : height / 2
        color: popup.down || popup.isOpen ? popup.theme.press : popup.hovered ? popup.theme.hover
             : popup.isBordered ? popup.theme.panel : "transparent"
        border.width: popup.visualFocus ? 2 : popup.isBordered ? 1 : 0
        border.color: popup.visualFocus ? popup.theme.accent : popup.theme.line
    }
    HintArea {
        theme: popup.theme
        text: popup.isOpen ? "" : popup.isOnlyIcon ? popup.title : label.truncated ? popup.title : "Model"
        isHovered: popup.hovered && !popup.down
    }
    Loader {
        id: menu
        active: popup.isOpen
        onActiveChanged: if (active) setSource("ModelMenu.qml", {popup: popup, theme: popup.theme, hasCompositor: popup.hasCompositor})
    }
}
