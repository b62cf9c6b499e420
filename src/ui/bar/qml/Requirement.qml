import QtQuick

// What has to be installed before the command can run.
Column {
    id: view

    required property var theme
    required property var requirement

    signal packagesFolderWanted()

    spacing: 8

    Text {
        text: "Requirements:"
        font.pixelSize: view.theme.body
        font.weight: Font.DemiBold
        color: view.theme.primary
    }
    Row {
        objectName: "manualHomebrew"
        visible: view.requirement.needsHomebrew === true
        width: parent.width
        spacing: 8
        Symbol {
            name: "exclamationmark"
            size: 17
            color: view.theme.named("red")
        }
        Text {
            width: parent.width - 25
            textFormat: Text.StyledText
            text: "Manual <a href=\"https://brew.sh\">Homebrew</a> installation is required, then Brindlet can "
                  + "automatically install <b>Homebrew &amp; " + (view.requirement.name || "") + "</b>."
            wrapMode: Text.Wrap
            font.pixelSize: view.theme.body
            color: view.theme.primary
            linkColor: view.theme.link
            onLinkActivated: link => Qt.openUrlExternally(link)
            HoverHandler { cursorShape: parent.hoveredLink !== "" ? Qt.PointingHandCursor : Qt.ArrowCursor }
        }
    }
    Rectangle {
        width: parent.width
        height: parts.height + 20
        radius: view.theme.radius
        color: view.theme.panel
        border.color: view.theme.line
        Symbol {
            x: 12
            y: 12
            name: "arrow.down.circle.fill"
            size: 26
            color: view.theme.accent
        }
        Column {
            id: parts
            x: 50
            y: 10
            width: parent.width - x - 12
            spacing: 2
            Text {
                width: parent.width
                text: "Downloads " + (view.requirement.name || "")
                textFormat: Text.PlainText
                elide: Text.ElideRight
                font.pixelSize: view.theme.body
                font.bold: true
                color: view.theme.primary
            }
            Text {
                width: parent.width
                text: view.requirement.description || ""
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                font.pixelSize: view.theme.small
                color: view.theme.secondary
            }
            Flow {
                width: parent.width
                topPadding: 4
                spacing: 16
                TextLink {
                    theme: view.theme
                    isSmall: true
                    objectName: "licence"
                    text: view.requirement.licenseName || ""
                    onClicked: Qt.openUrlExternally(view.requirement.licenseURL)
                }
                TextLink {
                    theme: view.theme
                    isSmall: true
                    text: "Source"
                    onClicked: Qt.openUrlExternally(view.requirement.sourceURL)
                }
                TextLink {
                    theme: view.theme
                    isSmall: true
                    objectName: "installs"
                    text: view.requirement.isFromHomebrew ? "Installs with Homebrew" : "Installs locally to Brindlet"
                    onClicked: view.requirement.isFromHomebrew ? Qt.openUrlExternally(view.requirement.sourceURL)
                                                                : view.packagesFolderWanted()
                }
            }
        }
    }
}
