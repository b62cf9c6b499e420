import QtQuick
import QtQuick.Window

// The menu of a ModelPopup, which makes it and puts it away.
Popover {
    id: menu

    required property var popup
    // Headings and models, as they stand beneath each other.
    readonly property var lines: {
        const all = []
        for (const section of popup.sections) {
            all.push({title: section.title, name: ""})
            for (const model of section.models)
                all.push({title: model.title, name: model.name})
        }
        return all
    }

    objectName: "modelMenu"
    title: "Models"
    isTransient: true
    contentWidth: 248
    contentHeight: Math.min(Math.floor(screenArea.height * 0.6), list.contentHeight + 16)
    onDismissed: popup.isOpen = false
    Component.onCompleted: {
        const owner = popup.Window.window
        const corner = popup.mapToItem(null, 0, 0)
        const top = popup.standsAbove < 0 ? corner.y : popup.standsAbove
        screenArea = Qt.rect(popup.Screen.virtualX, popup.Screen.virtualY, popup.Screen.width, popup.Screen.height)
        above = Qt.rect(owner.x + corner.x, owner.y + top, popup.width, corner.y + popup.height - top)
        transientParent = owner
        visible = true
        requestActivate()
        list.currentIndex = lines.findIndex(line => line.name === popup.selectedName && line.name !== "")
    }

    function choose(name) {
        popup.isOpen = false
        popup.chosen(name)
    }
    function step(by) {
        let at = list.currentIndex
        do
            at += by
        while (at >= 0 && at < lines.length && lines[at].name === "")
        if (at >= 0 && at < lines.length)
            list.currentIndex = at
    }

    ListView {
        id: list
        objectName: "models"
        anchors.fill: parent
        anchors.margins: 8
        model: menu.lines
        clip: true
        focus: true
        boundsBehavior: Flickable.StopAtBounds
        highlightMoveDuration: 0
        Keys.onUpPressed: menu.step(-1)
        Keys.onDownPressed: menu.step(1)
        Keys.onReturnPressed: if (currentIndex >= 0) menu.choose(menu.lines[currentIndex].name)
        Keys.onEnterPressed: if (currentIndex >= 0) menu.choose(menu.lines[currentIndex].name)
        Keys.onEscapePressed: menu.popup.isOpen = false
        delegate: Rectangle {
            id: line
            required property int index
            required property var modelData
            readonly property bool isHeading: modelData.name === ""
            width: ListView.view.width
            height: isHeading ? (index === 0 ? 24 : 32) : 28
            radius: 6
            color: !isHeading && (pointer.hovered || ListView.isCurrentItem) ? menu.theme.hover : "transparent"
            HoverHandler { id: pointer; enabled: !line.isHeading }
            TapHandler { enabled: !line.isHeading; onTapped: menu.choose(line.modelData.name) }
            Symbol {
                x: 8
                anchors.verticalCenter: parent.verticalCenter
                visible: !line.isHeading && line.modelData.name === menu.popup.selectedName
                name: "checkmark"
                size: 14
                lineWidth: 2.25
                color: menu.theme.primary
            }
            Text {
                x: line.isHeading ? 8 : 28
                width: parent.width - x - 8
                anchors.bottom: parent.bottom
                anchors.bottomMargin: line.isHeading ? 4 : (parent.height - height) / 2
                text: line.modelData.title
                textFormat: Text.PlainText
                elide: Text.ElideRight
                font.pixelSize: line.isHeading ? menu.theme.small : menu.theme.body
                font.weight: line.isHeading ? Font.DemiBold : Font.Normal
                color: line.isHeading ? menu.theme.secondary : menu.theme.primary
            }
        }
    }
    ScrollThumb {
        flickable: list
        theme: menu.theme
        anchors.rightMargin: -6
    }
}
