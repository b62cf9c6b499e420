import QtQuick
import QtQuick.Window

// What was asked before, the oldest first.
Popover {
    id: popover

    required property var model
    readonly property var entries: model.history
    property int hoveredCommandIdx: -1
    property bool isAskingToClear: false

    objectName: "historyList"
    title: "Brindlet history"
    isTransient: true
    contentWidth: 360
    contentHeight: isAskingToClear ? question.height + 32
                 : Math.min(Math.floor(screenArea.height / 2), entries.length === 0 ? 60 : list.contentHeight + 61)
    onDismissed: model.showHistory(false)
    onVisibleChanged: {
        isAskingToClear = false
        list.currentIndex = -1
        if (visible) {
            requestActivate()
            list.forceActiveFocus()
            list.positionViewAtEnd()
        }
    }

    Text {
        anchors.centerIn: parent
        visible: popover.entries.length === 0
        text: "Nothing in history"
        font.pixelSize: popover.theme.body
        color: popover.theme.secondary
    }
    ListView {
        id: list
        objectName: "historyRows"
        anchors.fill: parent
        anchors.margins: 8
        anchors.bottomMargin: 53
        visible: popover.entries.length > 0 && !popover.isAskingToClear
        model: popover.entries
        clip: true
        focus: true
        boundsBehavior: Flickable.StopAtBounds
        currentIndex: -1
        highlightMoveDuration: 0
        Keys.onUpPressed: currentIndex = currentIndex < 0 ? count - 1 : Math.max(0, currentIndex - 1)
        Keys.onDownPressed: currentIndex = Math.min(count - 1, currentIndex + 1)
        Keys.onReturnPressed: popover.model.chooseFromHistory(currentIndex)
        Keys.onEnterPressed: popover.model.chooseFromHistory(currentIndex)
        Keys.onDeletePressed: popover.model.removeFromHistory(currentIndex)
        Keys.onEscapePressed: popover.model.showHistory(false)

        delegate: Rectangle {
            id: entry
            required property int index
            required property var modelData
            readonly property bool isPointedAt: popover.hoveredCommandIdx === index
            width: ListView.view.width
            height: 32
            radius: 6
            color: isPointedAt || ListView.isCurrentItem ? popover.theme.hover : "transparent"
            HoverHandler {
                onHoveredChanged: {
                    if (hovered)
                        popover.hoveredCommandIdx = entry.index
                    else if (popover.hoveredCommandIdx === entry.index)
                        popover.hoveredCommandIdx = -1
                }
            }
            TapHandler { onTapped: popover.model.chooseFromHistory(entry.index) }
            Symbol {
                x: 8
                anchors.verticalCenter: parent.verticalCenter
                name: "chevron.left.chevron.left.dotted"
                size: 16
                color: popover.theme.secondary
            }
            Text {
                id: prompt
                x: 32
                width: parent.width - x - 36
                anchors.verticalCenter: parent.verticalCenter
                text: entry.modelData.prompt
                textFormat: Text.PlainText
                elide: Text.ElideRight
                maximumLineCount: 1
                font.pixelSize: popover.theme.body
                color: popover.theme.primary
            }
            HintArea {
                anchors.rightMargin: 36
                theme: popover.theme
                text: prompt.truncated ? entry.modelData.prompt : ""
                isHovered: entry.isPointedAt && !remove.hovered
            }
            BarButton {
                id: remove
                objectName: "remove"
                anchors.right: parent.right
                anchors.rightMargin: 4
                anchors.verticalCenter: parent.verticalCenter
                visible: entry.isPointedAt
                theme: popover.theme
                symbol: "xmark.circle.fill"
                symbolSize: 16
                tip: "Remove from history"
                onClicked: popover.model.removeFromHistory(entry.index)
            }
        }
    }
    ScrollThumb {
        visible: list.visible && flickable.visibleArea.heightRatio < 1
        flickable: list
        theme: popover.theme
        anchors.rightMargin: -6
    }
    Rectangle {
        visible: list.visible
        anchors.bottom: clear.top
        anchors.bottomMargin: 8
        width: parent.width
        height: 1
        color: popover.theme.line
    }
    PlainButton {
        id: clear
        objectName: "clearHistory"
        visible: list.visible
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 8
        anchors.horizontalCenter: parent.horizontalCenter
        theme: popover.theme
        isDestructive: true
        isQuiet: true
        text: "Clear history"
        onClicked: {
            popover.isAskingToClear = true
            cancel.forceActiveFocus()
        }
    }
    Column {
        id: question
        visible: popover.isAskingToClear
        x: 16
        y: 16
        width: parent.width - 32
        spacing: 8
        Keys.onEscapePressed: popover.isAskingToClear = false
        Text {
            width: parent.width
            text: "Clear Command History"
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: popover.theme.body
            font.weight: Font.DemiBold
            color: popover.theme.primary
        }
        Text {
            width: parent.width
            text: "Are you sure you want to clear your command history? This action cannot be undone."
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: popover.theme.body
            color: popover.theme.secondary
        }
        Item {
            width: parent.width
            height: 8
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 8
            PlainButton {
                objectName: "reallyClear"
                theme: popover.theme
                isDestructive: true
                text: "Clear"
                width: 100
                onClicked: {
                    popover.isAskingToClear = false
                    popover.model.clearHistory()
                }
            }
            PlainButton {
                id: cancel
                theme: popover.theme
                text: "Cancel"
                width: 100
                onClicked: popover.isAskingToClear = false
            }
        }
    }
}
