import QtQuick

// Rows that belong together, in a rounded frame with hairlines between them.
//
//     Panel { theme: theme; PanelRow { theme: theme; text: "Open at login" } }
Rectangle {
    id: panel

    required property var theme
    default property alias rows: column.data

    width: parent ? parent.width : 0
    implicitHeight: column.implicitHeight
    radius: 10
    color: theme.panel
    border.color: theme.line

    Column {
        id: column
        width: panel.width
    }
}
