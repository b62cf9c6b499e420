import QtQuick
import QtQuick.Window

// What a command would do, above the bar; the command itself can be edited here.
Popover {
    id: popover

    required property var model
    property string followUpLabel: "Refine request..."
    property bool isSelectionUnknown: false
    readonly property bool isAsking: model.promptState === "awaitingConfirmation"
    readonly property var rows: model.rows
    // So many at first, more on request: a line can have thousands of side effects.
    property int mostRows: 100

    objectName: "prediction"
    title: "Brindlet prediction"
    contentHeight: Math.min(tallest, head.height + scroll.contentHeight + foot.height + 4 * 16)
    onDismissed: model.showPrediction(false)
    onRowsChanged: mostRows = 100

    function showCommand() {
        if (command.text === model.command)
            return
        const at = command.cursorPosition
        command.text = model.command
        command.cursorPosition = Math.min(at, command.length)
    }
    Component.onCompleted: showCommand()
    Connections {
        target: popover.model
        function onCommandChanged() { popover.showCommand() }
    }

    FontMetrics {
        id: plain
        font.pixelSize: popover.theme.body
    }
    FontMetrics {
        id: bold
        font.pixelSize: popover.theme.body
        font.bold: true
    }
    // The columns of the changes line up.
    readonly property var columns: {
        let verb = 0, source = 0
        for (const row of rows) {
            if (row.verb === undefined)
                continue
            verb = Math.max(verb, bold.advanceWidth(row.verb))
            if (row.source === undefined)
                continue
            const place = row.source.from === "folder" ? 0 : 14 + 2 + plain.advanceWidth("/")
            source = Math.max(source, place + (row.source.from === "trash" ? bold : plain).advanceWidth(row.source.rest) + 3)
        }
        const room = list.width - 24 - verb - 60
        return {verb: Math.ceil(verb), source: Math.ceil(Math.min(source, room / 2))}
    }

    Item {
        anchors.fill: parent
        focus: true
        Keys.onPressed: event => {
            if (event.key === Qt.Key_R && event.modifiers === Qt.ControlModifier)
                popover.model.refine()
            else if (event.key === Qt.Key_Escape)
                popover.model.escape()
            else if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && !event.isAutoRepeat)
                popover.model.confirm()
            else
                return
            event.accepted = true
        }

        Column {
            id: head
            x: 16
            y: 16
            width: parent.width - 32
            spacing: 8

            Text {
                objectName: "request"
                width: parent.width
                text: popover.model.request
                textFormat: Text.PlainText
                wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                maximumLineCount: 3
                elide: Text.ElideRight
                font.pixelSize: popover.theme.title
                font.weight: Font.DemiBold
                color: popover.theme.primary
            }
            Item {
                width: parent.width
                height: runs.height
                Text {
                    id: runs
                    objectName: "runs"
                    width: parent.width - (unknown.visible ? unknown.width + 12 : 0)
                    text: popover.model.runsText
                    textFormat: Text.StyledText
                    elide: Text.ElideRight
                    font.pixelSize: popover.theme.body
                    color: popover.theme.secondary
                }
                // Why a harmless command asks.
                Row {
                    id: unknown
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    visible: popover.isSelectionUnknown && popover.isAsking
                    spacing: 4
                    Symbol {
                        anchors.verticalCenter: parent.verticalCenter
                        name: "exclamationmark.triangle"
                        size: 14
                        color: popover.theme.named("medium")
                    }
                    Text {
                        text: "Selected files unknown"
                        font.pixelSize: popover.theme.body
                        color: popover.theme.secondary
                    }
                }
            }
            Rectangle {
                width: parent.width
                height: Math.min(command.implicitHeight, 5 * commandMetrics.lineSpacing + 16)
                radius: popover.theme.radius
                color: popover.theme.field
                border.width: command.activeFocus ? 2 : 1
                border.color: command.activeFocus ? popover.theme.accent : popover.theme.line
                FontMetrics {
                    id: commandMetrics
                    font: command.font
                }
                Flickable {
                    id: commandView
                    anchors.fill: parent
                    anchors.margins: 2
                    contentHeight: command.implicitHeight - 4
                    clip: true
                    boundsBehavior: Flickable.StopAtBounds
                    function follow(rectangle) {
                        if (rectangle.y < contentY)
                            contentY = Math.max(0, rectangle.y - 6)
                        else if (rectangle.y + rectangle.height > contentY + height)
                            contentY = rectangle.y + rectangle.height - height + 6
                    }
                    TextEdit {
                        id: command
                        objectName: "command"
                        width: commandView.width
                        padding: 8
                        topPadding: 6
                        leftPadding: 8
                        textFormat: TextEdit.PlainText
                        wrapMode: TextEdit.WrapAnywhere
                        readOnly: !popover.isAsking
                        selectByMouse: true
                        font.family: popover.theme.monospace
                        font.pixelSize: popover.theme.body
                        color: popover.theme.primary
                        selectionColor: popover.theme.accent
                        selectedTextColor: popover.theme.accentText
                        Accessible.name: "Command"
                        onTextChanged: popover.model.editCommand(text)
                        onCursorRectangleChanged: commandView.follow(cursorRectangle)
                        Keys.priority: Keys.BeforeItem
                        Keys.onReturnPressed: event => { if (!event.isAutoRepeat) popover.model.confirm() }
                        Keys.onEnterPressed: event => { if (!event.isAutoRepeat) popover.model.confirm() }
                        Keys.onTabPressed: confirm.visible ? confirm.forceActiveFocus() : followUp.forceActiveFocus()
                    }
                }
            }
        }

        Flickable {
            id: scroll
            objectName: "predictionScroll"
            anchors.top: head.bottom
            anchors.topMargin: 16
            x: 16
            width: parent.width - 32
            height: Math.max(0, foot.y - 16 - y)
            contentHeight: all.height
            clip: true
            boundsBehavior: Flickable.StopAtBounds

            Column {
                id: all
                width: parent.width
                spacing: 8

                Requirement {
                    objectName: "requirement"
                    visible: popover.model.requirement.name !== undefined
                    width: parent.width
                    bottomPadding: 8
                    theme: popover.theme
                    requirement: popover.model.requirement
                    onPackagesFolderWanted: popover.model.showPackagesFolder()
                }
                Text {
                    text: "Brindlet predicts:"
                    font.pixelSize: popover.theme.body
                    font.weight: Font.DemiBold
                    color: popover.theme.primary
                }
                Rectangle {
                    width: parent.width
                    height: list.height + 24
                    radius: popover.theme.radius
                    color: popover.theme.panel
                    border.color: popover.theme.line
                    Column {
                        id: list
                        x: 12
                        y: 12
                        width: parent.width - 24
                        spacing: 8
                        Repeater {
                            model: popover.rows.slice(0, popover.mostRows)
                            PredictionLine {
                                required property var modelData
                                objectName: "row"
                                width: list.width
                                theme: popover.theme
                                row: modelData
                                verbWidth: popover.columns.verb
                                sourceWidth: popover.columns.source
                            }
                        }
                        PlainButton {
                            visible: popover.rows.length > popover.mostRows
                            theme: popover.theme
                            isQuiet: true
                            text: visible ? `Show ${popover.rows.length - popover.mostRows} more` : ""
                            onClicked: popover.mostRows += 400
                        }
                    }
                }
            }
        }
        // Where the rows go on.
        Repeater {
            model: [{isShown: !scroll.atYBeginning, y: scroll.y - 1}, {isShown: !scroll.atYEnd, y: scroll.y + scroll.height}]
            Rectangle {
                required property var modelData
                visible: modelData.isShown
                y: modelData.y
                width: popover.contentWidth
                height: 1
                color: popover.theme.line
            }
        }
        ScrollThumb {
            flickable: scroll
            theme: popover.theme
            anchors.rightMargin: -8
        }

        Item {
            id: foot
            x: 16
            y: parent.height - height - 16
            width: parent.width - 32
            height: 28
            PlainButton {
                id: followUp
                objectName: "followUp"
                visible: ["awaitingConfirmation", "complete", "presentingError"].includes(popover.model.promptState)
                theme: popover.theme
                text: popover.followUpLabel
                width: Math.min(implicitWidth, confirm.visible ? parent.width - confirm.width - 8 : parent.width)
                onClicked: popover.model.refine()
            }
            PlainButton {
                id: confirm
                objectName: "confirm"
                anchors.right: parent.right
                visible: popover.isAsking
                enabled: popover.model.canConfirm
                theme: popover.theme
                isProminent: true
                text: popover.model.confirmTitle
                onClicked: popover.model.confirm()
            }
        }
    }
}
