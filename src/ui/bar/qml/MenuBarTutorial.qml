import QtQuick
import QtQuick.Window

// How the bar comes back, over a picture of the panel with its item.
Window {
    id: window

    required property var model

    width: 440
    height: column.height + 32
    minimumWidth: width
    maximumWidth: width
    title: "Menu Bar Tutorial"
    flags: Qt.Window | Qt.WindowStaysOnTopHint
    color: windowTheme.surface
    onVisibleChanged: model.setShown(visible)

    Theme { id: windowTheme }

    Column {
        id: column
        width: parent.width
        spacing: 12

        Item {
            width: parent.width
            height: 132
            clip: true
            Rectangle {
                anchors.fill: parent
                gradient: Gradient {
                    GradientStop { position: 0; color: windowTheme.isDark ? "#27304f" : "#a9c4ff" }
                    GradientStop { position: 1; color: windowTheme.isDark ? "#3d2b63" : "#d9c8ff" }
                }
            }
            Rectangle {
                id: panel
                width: parent.width
                height: 30
                color: windowTheme.isDark ? "#1b1b1e" : "#fbfbfd"
                Row {
                    x: 14
                    anchors.verticalCenter: parent.verticalCenter
                    spacing: 14
                    Repeater {
                        model: [44, 30, 36]
                        Rectangle {
                            required property int modelData
                            width: modelData
                            height: 7
                            radius: 3.5
                            color: windowTheme.isDark ? "#4c4c52" : "#d5d5db"
                        }
                    }
                }
                Row {
                    id: tray
                    anchors.right: parent.right
                    anchors.rightMargin: 14
                    anchors.verticalCenter: parent.verticalCenter
                    spacing: 12
                    Rectangle {
                        id: item
                        width: 28
                        height: 24
                        radius: 6
                        color: windowTheme.accent
                        TrayMark {
                            anchors.centerIn: parent
                            size: 18
                            color: "white"
                        }
                    }
                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        name: "network"
                        size: 16
                        color: windowTheme.tertiary
                    }
                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        name: "power"
                        size: 16
                        color: windowTheme.tertiary
                    }
                    Rectangle {
                        anchors.verticalCenter: parent.verticalCenter
                        width: 34
                        height: 7
                        radius: 3.5
                        color: windowTheme.isDark ? "#4c4c52" : "#d5d5db"
                    }
                }
            }
            Rectangle {
                y: panel.height
                width: parent.width
                height: 1
                color: windowTheme.line
            }
            Symbol {
                x: tray.x + item.x + (item.width - width) / 2
                y: panel.height + 12
                name: "arrow.up"
                size: 34
                lineWidth: 2.4
                color: windowTheme.isDark ? "white" : windowTheme.accent
            }
        }
        Words {
            theme: windowTheme
            kind: "title"
            x: 32
            width: parent.width - 64
            topPadding: 8
            horizontalAlignment: Text.AlignHCenter
            text: window.model.title
        }
        Words {
            theme: windowTheme
            x: 32
            width: parent.width - 64
            horizontalAlignment: Text.AlignHCenter
            textFormat: Text.StyledText
            text: window.model.text
        }
        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            topPadding: 4
            spacing: 12
            Words {
                theme: windowTheme
                anchors.verticalCenter: recorder.verticalCenter
                text: window.model.shortcutLabel
            }
            ShortcutRecorder {
                id: recorder
                objectName: "recorder"
                theme: windowTheme
                shortcut: window.model.shortcut
            }
        }
        Words {
            theme: windowTheme
            kind: "problem"
            x: 32
            width: parent.width - 64
            visible: text !== ""
            horizontalAlignment: Text.AlignHCenter
            text: window.model.shortcut.problem
        }
    }
    Shortcut {
        sequences: [StandardKey.Close, "Esc"]
        enabled: !window.model.shortcut.isRecording
        onActivated: window.close()
    }
}
