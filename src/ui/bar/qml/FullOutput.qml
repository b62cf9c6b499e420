import QtQuick
import QtQuick.Window

// All that the run printed.
Popover {
    id: popover

    property string text: ""

    signal escaped()

    objectName: "fullOutput"
    title: "Full command output"
    contentHeight: Math.min(Math.max(100, Math.min(500, area.implicitHeight)) + heading.height + 40,
                            tallest)

    FocusScope {
        anchors.fill: parent
        focus: true
        Keys.onEscapePressed: popover.escaped()

        Text {
            id: heading
            x: 16
            y: 16
            width: parent.width - 32
            text: "Full command output"
            elide: Text.ElideRight
            font.pixelSize: popover.theme.body
            font.weight: Font.DemiBold
            color: popover.theme.primary
        }
        Rectangle {
            x: 16
            anchors.top: heading.bottom
            anchors.topMargin: 8
            width: parent.width - 32
            height: parent.height - y - 16
            radius: popover.theme.radius
            color: popover.theme.field
            border.color: popover.theme.line
            Flickable {
                id: scroll
                anchors.fill: parent
                anchors.margins: 1
                contentWidth: width
                contentHeight: area.implicitHeight
                clip: true
                boundsBehavior: Flickable.StopAtBounds
                TextEdit {
                    id: area
                    objectName: "outputText"
                    width: scroll.width
                    padding: 8
                    focus: true
                    text: popover.text
                    textFormat: TextEdit.PlainText
                    wrapMode: TextEdit.WrapAnywhere
                    readOnly: true
                    selectByMouse: true
                    font.family: popover.theme.monospace
                    font.pixelSize: popover.theme.body
                    color: popover.theme.primary
                    selectionColor: popover.theme.accent
                    selectedTextColor: popover.theme.accentText
                }
            }
            ScrollThumb {
                flickable: scroll
                theme: popover.theme
            }
        }
    }
}
