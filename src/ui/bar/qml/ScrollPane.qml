import QtQuick
import QtQuick.Templates as T

// What may be longer than its window, in a column with a margin.
//
//     ScrollPane { theme: theme; anchors.fill: parent; Panel { ... } }
Flickable {
    id: pane

    required property var theme
    property real margin: 24
    property alias spacing: column.spacing
    default property alias content: column.data

    contentWidth: width
    contentHeight: column.height + 2 * margin
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    onContentYChanged: hideOutside(column)
    onHeightChanged: if (isComplete) hideOutside(column)
    onContentHeightChanged: if (isComplete) hideOutside(column)
    Component.onCompleted: {
        isComplete = true
        hideOutside(column)
    }
    property bool isComplete: false

    // The software renderer draws a path that is scrolled out altogether over what is there (Qt 6.4:
    // QQuickShapeSoftwareRenderNode takes an empty clip for none).
    function hideOutside(item) {
        for (let at = 0; at < item.children.length; ++at) {
            const child = item.children[at]
            if (!(child instanceof Symbol)) {
                hideOutside(child)
                continue
            }
            const top = child.mapToItem(pane, 0, 0).y
            child.opacity = top + child.height > 0 && top < height ? 1 : 0
        }
    }
    // So that an item that has got the keyboard can be seen.
    function show(item) {
        const top = item.mapToItem(column, 0, 0).y + margin
        if (top < contentY)
            contentY = Math.max(0, top - margin)
        else if (top + item.height > contentY + height)
            contentY = Math.min(contentHeight - height, top + item.height + margin - height)
    }

    Column {
        id: column
        x: pane.margin
        y: pane.margin
        width: pane.width - 2 * pane.margin
        spacing: 12
    }
    Connections {
        target: pane.Window.window
        function onActiveFocusItemChanged() {
            const item = pane.Window.window ? pane.Window.window.activeFocusItem : null
            for (let above = item; above; above = above.parent)
                if (above === column)
                    return pane.show(item)
        }
    }
    T.ScrollBar.vertical: T.ScrollBar {
        id: bar
        width: 10
        visible: size < 1
        minimumSize: 0.1
        contentItem: Item {
            Rectangle {
                x: 2
                width: 6
                height: parent.height
                radius: 3
                color: pane.theme.secondary
                opacity: bar.pressed ? 0.8 : bar.hovered || pane.moving ? 0.6 : 0.3
            }
        }
    }
}
