import QtQuick
import QtQuick.Window

// The settings in five tabs.
Window {
    id: window

    required property var model

    // As high as each tab needs, until the user makes it another.
    readonly property var heights: [340, 460, 640, 640, 460]
    property int givenHeight: 0

    width: 640
    height: heights[0]
    minimumWidth: 560
    minimumHeight: 320
    title: "Brindlet Settings"
    color: windowTheme.surface
    onVisibleChanged: {
        tabs.forceActiveFocus()  // so that a field that is left stores what it holds
        model.setShown(visible)
    }
    Component.onCompleted: height = givenHeight = heights[model.tab]

    Theme { id: windowTheme }

    Rectangle {
        id: head
        z: 1  // what is scrolled out of the page may not show on it
        width: parent.width
        height: tabs.implicitHeight
        color: windowTheme.isDark ? Qt.lighter(windowTheme.surface, 1.12) : "#ececef"

        Tabs {
            id: tabs
            objectName: "tabs"
            anchors.fill: parent
            theme: windowTheme
            focus: true
            tabs: window.model.tabs
            current: window.model.tab
            onChosen: index => window.model.tab = index
        }
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: windowTheme.line
        }
    }
    Loader {
        id: page
        objectName: "page"
        anchors.top: head.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        readonly property var sources: ["SettingsGeneral.qml", "SettingsAutoRun.qml", "SettingsModels.qml",
                                        "SettingsTools.qml", "SettingsAbout.qml"]
        function load() {
            tabs.forceActiveFocus()
            setSource(sources[window.model.tab], {theme: windowTheme, model: window.model})
        }
        Component.onCompleted: load()
        Connections {
            target: window.model
            function onTabChanged() {
                page.load()
                if (window.height === window.givenHeight)
                    window.height = window.givenHeight = window.heights[window.model.tab]
            }
        }
    }
    Shortcut {
        sequences: [StandardKey.Close, "Esc"]
        onActivated: window.close()
    }
}
