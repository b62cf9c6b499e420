import QtQuick

// A package: what it is, whether it is there, and how far its installation has come.
Item {
    id: row

    required property var theme
    required property var each

    signal installAsked()
    signal uninstallAsked()
    signal urlAsked(string url)

    objectName: "tool " + each.name
    width: parent ? parent.width : 0
    height: about.height + 24

    Rectangle {
        visible: row.y > 0
        x: 52
        width: row.width - 52
        height: 1
        color: row.theme.line
        opacity: 0.7
    }
    Symbol {
        x: 16
        y: 14
        size: 22
        name: row.each.symbol
        color: row.each.isInstalled ? row.theme.named("green") : row.theme.secondary
    }
    Column {
        id: about
        x: 52
        y: 12
        width: row.width - x - 132
        spacing: 2
        Words {
            theme: row.theme
            kind: "heading"
            width: parent.width
            text: row.each.name
        }
        Words {
            theme: row.theme
            kind: "note"
            width: parent.width
            text: row.each.description
        }
        Row {
            spacing: 12
            TextLink {
                objectName: "licence"
                theme: row.theme
                isSmall: true
                text: row.each.licenseName
                onClicked: row.urlAsked(row.each.licenseURL)
            }
            TextLink {
                objectName: "source"
                theme: row.theme
                isSmall: true
                text: "Source"
                onClicked: row.urlAsked(row.each.sourceURL)
            }
        }
        Column {
            objectName: "running"
            visible: row.each.isActive
            width: parent.width
            topPadding: 4
            spacing: 4
            ProgressLine {
                theme: row.theme
                width: parent.width
                progress: row.each.progress
            }
            Words {
                objectName: "message"
                theme: row.theme
                kind: "note"
                width: parent.width
                visible: text !== ""
                wrapMode: Text.NoWrap
                elide: Text.ElideRight
                font.pixelSize: row.theme.small
                text: row.each.message
            }
        }
    }
    PlainButton {
        objectName: "act"
        visible: !row.each.isActive
        anchors.right: parent.right
        anchors.rightMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        width: 100
        theme: row.theme
        text: row.each.isInstalled ? "Uninstall" : "Install"
        onClicked: row.each.isInstalled ? row.uninstallAsked() : row.installAsked()
    }
    Words {
        objectName: "percent"
        visible: row.each.isActive
        anchors.right: parent.right
        anchors.rightMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        width: 100
        horizontalAlignment: Text.AlignHCenter
        theme: row.theme
        text: row.each.percent
    }
}
