import QtQuick

// A path as a row shows it: a picture of where it is counted from, and the rest, cut in the middle where it is too long.
// A click makes a text of the rest that can be selected, whole.
Item {
    id: view

    required property var theme
    property var path: ({from: "folder", rest: ""})
    property bool isStruck: false
    readonly property bool isMarked: path.from !== "folder"
    readonly property real wantedWidth: (isMarked ? place.width : 0)
                                        + (path.rest === "" ? 0 : Math.ceil(metrics.advanceWidth) + 2)

    implicitWidth: wantedWidth
    implicitHeight: text.implicitHeight

    TextMetrics {
        id: metrics
        font: text.font
        text: view.path.rest
    }
    TextMetrics {
        id: cut
        font: text.font
        text: view.path.rest
        elide: Text.ElideMiddle
        elideWidth: Math.max(0, text.width - 2)
    }
    Row {
        id: place
        visible: view.isMarked
        anchors.verticalCenter: parent.verticalCenter
        spacing: 1
        rightPadding: 1
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            name: view.path.from === "trash" ? "trash" : "house"
            size: 14
            color: view.theme.secondary
        }
        Text {
            visible: view.path.rest !== ""
            text: "/"
            font: text.font
            color: view.theme.secondary
        }
    }
    TextInput {
        id: text
        objectName: "path"
        x: view.isMarked ? place.width : 0
        width: Math.max(0, Math.min(view.width - x, Math.ceil(metrics.advanceWidth) + 2))
        readOnly: true
        selectByMouse: true
        persistentSelection: false
        clip: true
        horizontalAlignment: TextInput.AlignLeft
        text: activeFocus ? view.path.rest : cut.elidedText
        font.pixelSize: view.theme.body
        font.bold: view.path.from === "trash"
        font.strikeout: view.isStruck
        color: view.theme.primary
        selectionColor: view.theme.accent
        selectedTextColor: view.theme.accentText
        onActiveFocusChanged: if (!activeFocus) deselect()
    }
    HoverHandler { id: hover }
    HintArea {
        theme: view.theme
        text: cut.elidedText !== view.path.rest ? view.path.rest : ""
        isHovered: hover.hovered
    }
}
