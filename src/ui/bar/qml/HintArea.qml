import QtQuick

// Shows a hint beside its parent while the pointer rests on it.
//
//     HintArea { theme: bar.theme; text: "Close"; isHovered: button.hovered }
Item {
    id: area

    required property var theme
    property string text: ""
    property bool isHovered: false

    anchors.fill: parent

    Timer {
        id: rest
        interval: 600
        running: area.isHovered && area.text !== ""
    }
    Connections {
        target: rest
        function onTriggered() { hint.active = true }
    }
    onIsHoveredChanged: if (!isHovered) hint.active = false
    onVisibleChanged: if (!visible) hint.active = false
    onTextChanged: hint.active = false
    Loader {
        id: hint
        active: false
        source: "Hint.qml"
        onLoaded: {
            item.theme = area.theme
            item.text = area.text
            item.showAt(area)
        }
    }
}
