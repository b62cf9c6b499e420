import QtQuick
import QtQuick.Templates as T

// A question over the rest of its window, which waits for the answer. Escape is the first of the two.
//
//     Alert { theme: theme; isShown: model.isQuitAsked; title: "Quit?"; text: "..."; yes: "Quit"
//             onAnswered: isAgreed => model.answerQuit(isAgreed) }
T.Popup {
    id: alert

    required property var theme
    property bool isShown: false
    property string title: ""
    property string text: ""
    property string no: "Cancel"
    property string yes: ""

    signal answered(bool isAgreed)

    visible: isShown
    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: 320
    height: implicitContentHeight + 40
    padding: 20
    modal: true
    focus: true
    closePolicy: T.Popup.NoAutoClose
    T.Overlay.modal: Rectangle { color: alert.theme.isDark ? "#80000000" : "#50000000" }

    background: Rectangle {
        radius: alert.theme.popoverRadius
        color: alert.theme.surface
        border.color: alert.theme.line
    }
    contentItem: Column {
        id: column
        readonly property real inner: alert.width - 2 * alert.padding
        spacing: 8
        focus: true
        Keys.onEscapePressed: alert.answered(false)
        Words {
            theme: alert.theme
            kind: "heading"
            width: column.inner
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: alert.theme.large
            text: alert.title
        }
        Words {
            theme: alert.theme
            width: column.inner
            horizontalAlignment: Text.AlignHCenter
            text: alert.text
        }
        Item { width: 1; height: 4 }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 12
            PlainButton {
                objectName: "no"
                theme: alert.theme
                width: 132
                text: alert.no
                onClicked: alert.answered(false)
            }
            PlainButton {
                objectName: "yes"
                theme: alert.theme
                width: 132
                isDestructive: true
                text: alert.yes
                onClicked: alert.answered(true)
            }
        }
    }
}
