import QtQuick

// How far something has come.
//
//     ProgressLine { theme: theme; progress: 0.3 }
Rectangle {
    id: line

    required property var theme
    property real progress: 0

    implicitHeight: 6
    radius: 3
    color: theme.isDark ? "#4a4a50" : "#e2e2e7"
    Accessible.role: Accessible.ProgressBar
    Accessible.name: Math.floor(progress * 100) + "%"
    Rectangle {
        height: parent.height
        radius: 3
        visible: line.progress > 0
        width: Math.max(6, line.width * Math.min(1, line.progress))
        color: line.theme.accent
        Behavior on width { NumberAnimation { duration: 100 } }
    }
}
