import QtQuick

// What is selected, in two words; files can be dropped here where the file manager doesn't tell.
Rectangle {
    id: view

    required property var theme
    property string text: ""
    property string names: ""
    property bool knowsSelection: true
    property bool isSmall: false
    property bool isTarget: false

    readonly property string whatToDo: "This window doesn't tell which files are selected. Drop files here, or choose "
                                       + "Brindlet from their context menu."
    readonly property bool isUnknown: !knowsSelection && text !== ""
    readonly property string shownText: !isUnknown ? text : isSmall ? "Unknown" : "Selection unknown"

    Accessible.role: Accessible.StaticText
    Accessible.name: shownText
    visible: text !== ""
    width: visible ? Math.ceil(row.width) + (isSmall ? 12 : 20) : 0
    height: 28
    radius: 14
    color: isTarget ? theme.faded(theme.accent, 0.18) : theme.hover
    border.width: isTarget ? 2 : 0
    border.color: theme.accent

    Row {
        id: row
        anchors.centerIn: parent
        spacing: 6
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            visible: !view.isSmall
            name: view.isUnknown ? "exclamationmark.triangle" : view.text === "This folder" ? "folder" : "doc"
            size: 15
            color: view.theme.secondary
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: view.shownText
            textFormat: Text.PlainText
            font.pixelSize: view.isSmall ? view.theme.small : view.theme.body - 1
            color: view.theme.secondary
        }
    }
    HoverHandler { id: pointer }
    HintArea {
        theme: view.theme
        text: view.isUnknown ? view.whatToDo : view.names
        isHovered: pointer.hovered
    }
}
