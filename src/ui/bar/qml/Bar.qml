import QtQuick
import QtQuick.Window

// The bar: what is selected, the field or the result, and the buttons. C++ says where it stands and how big it is.
Window {
    id: bar

    required property var model
    required property var frame

    readonly property string promptState: model.promptState
    readonly property bool isEntering: ["enteringPrompt", "enteringFollowUpPrompt", "question"].includes(promptState)
    readonly property bool isWorking: ["sendingRequest", "responseReceived", "runningCommand", "installingPackage",
                                       "completeButInterprettingResult"].includes(promptState)
    readonly property bool canRefine: ["awaitingConfirmation", "complete", "presentingError"].includes(promptState)
    readonly property bool hasPrediction: model.hasCommand
                                          && !["enteringPrompt", "sendingRequest", "question"].includes(promptState)
    readonly property bool hasOutput: promptState === "complete" && model.fullOutput !== ""
    readonly property string followUpLabel: promptState === "complete" ? "Follow up..." : "Refine request..."
    readonly property var riskIcons: ({low: ["info.circle", "primary"], medium: ["exclamationmark.triangle", "medium"],
                                       high: ["exclamationmark.octagon.fill", "red"]})
    property bool fullCommandOutputShowing: false
    property bool isReady: false

    // What the width has room for.
    readonly property real barWidth: width - 2 * frame.overhang
    readonly property bool isNarrow: barWidth < 520
    readonly property bool isTiny: barWidth < 280
    readonly property bool isCramped: isTiny && !isEntering  // the result needs all there is
    // The shadow falls into what is left free around the bar.
    readonly property real shade: frame.hasCompositor && frame.overhang > 0 ? 10 : 0
    readonly property rect screenArea: Qt.rect(area.Screen.virtualX, area.Screen.virtualY, area.Screen.width,
                                               area.Screen.height)

    title: "Brindlet"
    color: "transparent"  // always: a window keeps the depth that it was made with

    onClosing: close => {
        close.accepted = false
        frame.windowShouldClose()
    }
    onHasOutputChanged: fullCommandOutputShowing = false
    onPromptStateChanged: Qt.callLater(placeFocus)
    Component.onCompleted: {
        field.text = model.prompt
        placeFocus()
        makeWanted()
        isReady = true
    }

    function placeFocus() {
        if (isEntering)
            field.forceActiveFocus()
        else
            result.forceActiveFocus()
        // A popover that the keyboard was in gives it back when it goes.
        if ((prediction.item && prediction.item.active && !prediction.item.visible)
            || (output.item && output.item.active && !output.item.visible))
            requestActivate()
    }
    function focusResult() {
        requestActivate()
        placeFocus()
    }
    // Where a popover of that item stands: above the bar.
    function standOf(item) {
        const middle = item.mapToItem(null, item.width / 2, 0).x
        return Qt.rect(bar.x + middle, bar.y, 0, ground.height)
    }
    function takePrompt() {
        if (field.text === model.prompt)
            return
        const at = field.cursorPosition
        field.text = model.prompt
        field.cursorPosition = Math.min(at, field.length)
    }
    function handleKey(event) {
        if (event.key === Qt.Key_Escape)
            model.escape()
        else if (event.key === Qt.Key_Up)
            model.historyStep(-1)
        else if (event.key === Qt.Key_Down)
            model.historyStep(1)
        else if (event.key === Qt.Key_R && event.modifiers === Qt.ControlModifier && canRefine)
            model.refine()
        else
            return false
        return true
    }

    Theme { id: theme }

    Connections {
        target: bar.model
        function onPromptChanged() {
            if (field.text !== bar.model.prompt)
                field.text = bar.model.prompt
        }
        function onHistoryMoved(direction) {
            slide.from = direction * -12
            sliding.restart()
        }
    }
    DropArea {
        id: drop
        objectName: "drop"
        anchors.fill: parent
        onEntered: drag => drag.accepted = drag.hasUrls
        onDropped: event => {
            bar.frame.dropped(event.urls)
            event.accept()
        }
    }

    Item {
        id: area
        anchors.fill: parent
        opacity: bar.frame.foldOpacity
        transform: Rotation {
            axis { x: 1; y: 0; z: 0 }
            origin { x: bar.width / 2; y: 0 }
            angle: bar.frame.foldDegrees
        }

        // What the cut of the window leaves of the corners.
        Rectangle {
            anchors.fill: parent
            visible: !bar.frame.hasCompositor
            color: theme.line
        }
        SoftShadow {
            anchors.fill: ground
            visible: bar.shade > 0
            radius: ground.radius
            extent: bar.shade
        }
        Rectangle {
            id: ground
            x: bar.frame.overhang
            width: bar.barWidth
            height: bar.height - bar.shade
            radius: theme.barRadius
            readonly property real thickness: bar.frame.hasCompositor && bar.frame.isTranslucent ? 0.93 : 1
            // The lower edge of the window that it hangs from doesn't show through.
            gradient: Gradient {
                GradientStop { position: 14 / ground.height; color: theme.surface }
                GradientStop { position: 26 / ground.height; color: theme.faded(theme.surface, ground.thickness) }
            }
            border.color: theme.line
        }

        Item {
            id: content
            anchors.fill: ground
            anchors.leftMargin: bar.isTiny ? 12 : 16
            anchors.rightMargin: bar.isTiny ? 8 : 12

            SelectionLabel {
                id: selection
                objectName: "selection"
                anchors.verticalCenter: parent.verticalCenter
                theme: theme
                text: bar.barWidth < 240 || bar.isCramped ? "" : bar.model.selection
                names: bar.model.selectedNames
                knowsSelection: bar.frame.knowsSelection
                isSmall: bar.isNarrow
                isTarget: drop.containsDrag
            }

            Row {
                id: tools
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                spacing: bar.isTiny ? 0 : 4

                ModelPopup {
                    objectName: "models"
                    visible: bar.isEntering && !bar.isTiny
                    width: isOnlyIcon ? 28 : Math.min(implicitWidth, 180)
                    theme: theme
                    sections: bar.model.modelSections
                    selectedName: bar.model.selectedModel
                    selectedTitle: bar.model.selectedModelTitle
                    isOnlyIcon: bar.barWidth < 640
                    hasCompositor: bar.frame.hasCompositor
                    standsAbove: 0
                    onOpening: bar.model.refreshModels()
                    onChosen: name => bar.model.selectModel(name)
                    onSettingsWanted: bar.frame.openSettings("AI Models")
                    onIsOpenChanged: if (!isOpen) bar.placeFocus()
                }
                BarButton {
                    id: clock
                    objectName: "clock"
                    visible: !bar.isCramped
                    theme: theme
                    symbol: "clock"
                    tip: "History"
                    checked: bar.model.isHistoryShown
                    // A press outside has put the list away already when the click comes.
                    property bool wasShown: false
                    onPressed: wasShown = bar.model.isHistoryShown
                    onClicked: bar.model.showHistory(!wasShown)
                }
                BarButton {
                    objectName: "gear"
                    visible: !bar.isCramped
                    theme: theme
                    symbol: "gear"
                    tip: "Settings"
                    onClicked: bar.frame.openSettings()
                }
                BarButton {
                    objectName: "close"
                    theme: theme
                    symbol: "xmark"
                    symbolSize: 16
                    tip: bar.promptState === "enteringPrompt" ? "Hide the bar" : "Close"
                    onClicked: {
                        if (bar.promptState === "enteringPrompt")
                            bar.frame.pressCloseButton()
                        else
                            bar.model.close()
                    }
                }
            }

            Item {
                id: middle
                anchors.left: selection.right
                anchors.leftMargin: selection.width > 0 ? (bar.isNarrow ? 8 : 12) : 0
                anchors.right: tools.left
                anchors.rightMargin: bar.isNarrow ? 4 : 12
                anchors.top: parent.top
                anchors.bottom: parent.bottom
                transform: Translate { id: slide; property real from: 0 }

                ParallelAnimation {
                    id: sliding
                    NumberAnimation { target: slide; property: "y"; from: slide.from; to: 0; duration: 200; easing.type: Easing.OutBack }
                    NumberAnimation { target: middle; property: "opacity"; from: 0.2; to: 1; duration: 160 }
                }

                // The field, and above it the question that it answers.
                Column {
                    id: entry
                    visible: bar.isEntering
                    anchors.verticalCenter: parent.verticalCenter
                    width: parent.width
                    spacing: 4

                    Text {
                        id: question
                        objectName: "question"
                        x: Math.max(0, Math.min(entryRow.x + entryRow.width / 2 - width / 2, entry.width - width))
                        visible: bar.promptState === "question"
                        width: Math.min(entry.width, Math.ceil(questionMetrics.advanceWidth) + 1)
                        horizontalAlignment: Text.AlignHCenter
                        text: visible ? bar.model.statusText : ""
                        textFormat: Text.PlainText
                        wrapMode: Text.WordWrap
                        maximumLineCount: 2
                        elide: Text.ElideRight
                        lineHeight: 16
                        lineHeightMode: Text.FixedHeight
                        font.pixelSize: theme.body
                        color: theme.primary
                        TextMetrics {
                            id: questionMetrics
                            font: question.font
                            text: question.text
                        }
                        HoverHandler { id: overQuestion }
                        HintArea {
                            theme: theme
                            text: question.truncated ? question.text : ""
                            isHovered: overQuestion.hovered
                        }
                    }
                    Row {
                        id: entryRow
                        // In the middle of the bar where there is room for that.
                        x: Math.max(0, Math.min(content.width / 2 - middle.x - width / 2, entry.width - width))
                        spacing: 8
                        readonly property real besides: (followUpIcon.visible ? followUpIcon.width + spacing : 0)
                                                        + (reply.visible ? reply.width + spacing : 0)

                        Rectangle {
                            id: capsule
                            readonly property real maxPromptFieldWidth: entry.width - entryRow.besides
                            property real promptWidth: Math.max(200, Math.ceil(promptMetrics.advanceWidth) + 20)
                            readonly property real around: submit.visible ? 14 + 4 + submit.width + 3 : 24
                            width: Math.max(24, Math.min(promptWidth + around,
                                                         Math.max(maxPromptFieldWidth - 60 + around, Math.min(200, maxPromptFieldWidth))))
                            height: question.visible ? 28 : 32
                            radius: height / 2
                            color: theme.field
                            border.width: field.activeFocus && bar.active ? 2 : 1
                            border.color: field.activeFocus && bar.active ? theme.accent : theme.line
                            Behavior on promptWidth {
                                enabled: bar.isReady
                                NumberAnimation { duration: 200; easing.type: Easing.InOutQuad }
                            }
                            TextMetrics {
                                id: promptMetrics
                                font: field.font
                                text: field.text
                            }
                            Field {
                                id: field
                                objectName: "field"
                                anchors.verticalCenter: parent.verticalCenter
                                x: submit.visible ? 14 : 12
                                width: parent.width - parent.around
                                theme: theme
                                isBare: true
                                font.pixelSize: theme.large
                                placeholderText: ({enteringPrompt: "Enter query or command",
                                                   enteringFollowUpPrompt: "Refine your request...",
                                                   question: "Respond..."})[bar.promptState] || ""
                                Accessible.name: placeholderText
                                onTextEdited: {
                                    bar.model.setPrompt(text)
                                    bar.takePrompt()
                                }
                                Keys.priority: Keys.BeforeItem
                                Keys.onPressed: event => {
                                    if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                                        bar.model.submit()
                                    else if (event.key === Qt.Key_Tab)
                                        bar.frame.returnToFinder()
                                    else if (!bar.handleKey(event))
                                        return
                                    event.accepted = true
                                }
                            }
                            BarButton {
                                id: submit
                                objectName: "submit"
                                anchors.right: parent.right
                                anchors.rightMargin: 3
                                anchors.verticalCenter: parent.verticalCenter
                                implicitWidth: 26
                                implicitHeight: 26
                                visible: bar.promptState !== "question" && !bar.isTiny
                                enabled: field.text.trim() !== ""
                                theme: theme
                                symbol: "arrow.up"
                                symbolSize: 15
                                isFilled: true
                                onClicked: bar.model.submit()
                            }
                        }
                        PlainButton {
                            id: reply
                            objectName: "reply"
                            anchors.verticalCenter: parent.verticalCenter
                            visible: bar.promptState === "question" && !bar.isTiny
                            enabled: field.text.trim() !== ""
                            theme: theme
                            isProminent: true
                            text: "Reply"
                            onClicked: bar.model.submit()
                        }
                        PopoverIconWidget {
                            id: followUpIcon
                            objectName: "followUpPredictionIcon"
                            anchors.verticalCenter: parent.verticalCenter
                            visible: bar.promptState === "enteringFollowUpPrompt" && bar.hasPrediction
                            theme: theme
                            tip: "Prediction"
                            iconName: bar.riskIcons[bar.model.risk][0]
                            iconColor: theme.named(bar.riskIcons[bar.model.risk][1])
                            showing: bar.model.isPredictionShown
                            onFlipped: showing => bar.model.showPrediction(showing)
                            onPopoverHidden: bar.focusResult()
                        }
                    }
                }

                // The line that says what is going on, and what came of it.
                FocusScope {
                    id: result
                    objectName: "result"
                    visible: !bar.isEntering
                    anchors.fill: parent
                    Keys.onPressed: event => {
                        if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
                            if (!event.isAutoRepeat)
                                bar.model.confirmOrDismiss()
                        } else if (!bar.handleKey(event)) {
                            return
                        }
                        event.accepted = true
                    }

                    Spinner {
                        id: spinner
                        visible: bar.isWorking
                        anchors.verticalCenter: parent.verticalCenter
                        size: 16
                        color: theme.secondary
                    }
                    Column {
                        anchors.left: parent.left
                        anchors.leftMargin: spinner.visible ? 26 : 0
                        anchors.right: widgets.left
                        anchors.rightMargin: 8
                        anchors.verticalCenter: parent.verticalCenter
                        spacing: 8
                        Text {
                            id: status
                            objectName: "status"
                            width: parent.width
                            text: bar.isEntering ? "" : bar.model.statusText
                            textFormat: Text.PlainText
                            wrapMode: Text.WrapAtWordBoundaryOrAnywhere
                            maximumLineCount: progress.visible ? 2 : 3
                            elide: Text.ElideRight
                            font.pixelSize: bar.isTiny ? theme.body - 1 : bar.isNarrow ? theme.body : theme.large
                            Accessible.role: Accessible.StaticText
                            Accessible.name: text
                            color: bar.promptState === "presentingError" ? theme.named("red")
                                 : bar.promptState === "complete" ? theme.primary : theme.secondary
                            HoverHandler { id: overStatus }
                            HintArea {
                                theme: theme
                                text: status.truncated ? status.text : ""
                                isHovered: overStatus.hovered
                            }
                        }
                        ProgressLine {
                            id: progress
                            objectName: "progress"
                            width: parent.width
                            visible: bar.isWorking && bar.model.progress >= 0
                            height: 4
                            theme: theme
                            progress: Math.max(0, bar.model.progress)
                            Behavior on progress {
                                NumberAnimation { duration: bar.model.progressDuration; easing.type: Easing.InOutQuad }
                            }
                        }
                    }
                    Row {
                        id: widgets
                        anchors.right: parent.right
                        anchors.verticalCenter: parent.verticalCenter
                        spacing: 4
                        PopoverIconWidget {
                            id: predictionIcon
                            objectName: "predictionIcon"
                            visible: bar.hasPrediction
                            theme: theme
                            tip: "Prediction"
                            iconName: bar.riskIcons[bar.model.risk][0]
                            iconColor: theme.named(bar.riskIcons[bar.model.risk][1])
                            showing: bar.model.isPredictionShown
                            onFlipped: showing => bar.model.showPrediction(showing)
                            onPopoverHidden: bar.focusResult()
                        }
                        PopoverIconWidget {
                            id: outputIcon
                            objectName: "outputIcon"
                            visible: bar.hasOutput
                            theme: theme
                            tip: "Full command output"
                            iconName: "text.justify.left"
                            showing: bar.fullCommandOutputShowing
                            onFlipped: showing => bar.fullCommandOutputShowing = showing
                            onPopoverHidden: bar.focusResult()
                        }
                        PlainButton {
                            objectName: "refine"
                            visible: bar.canRefine && !bar.isNarrow
                            focusPolicy: Qt.NoFocus
                            theme: theme
                            isQuiet: true
                            text: bar.followUpLabel
                            onClicked: bar.model.refine()
                        }
                        BarButton {
                            objectName: "refineIcon"
                            visible: bar.canRefine && bar.isNarrow && !bar.isTiny
                            theme: theme
                            symbol: "pencil"
                            tip: bar.followUpLabel
                            onClicked: bar.model.refine()
                        }
                    }
                }
            }
        }
    }

    // Made when they are first wanted: the bar itself is to be there at once.
    function makePopover(loader, file, properties) {
        properties.theme = theme
        properties.hasCompositor = Qt.binding(() => bar.frame.hasCompositor)
        properties.screenArea = Qt.binding(() => bar.screenArea)
        properties.contentWidth = properties.contentWidth
                                  || Qt.binding(() => Math.min(600, Math.max(440, bar.barWidth), bar.screenArea.width - 8))
        properties.transientParent = bar
        loader.setSource(file, properties)
        loader.active = true
        if (loader !== history)
            bar.model.keepKeyboardFrom(loader.item)
        loader.item.visible = Qt.binding(() => loader.isWanted && bar.visible)
    }
    function makeWanted() {
        if (prediction.isWanted && !prediction.active)
            makePopover(prediction, "Prediction.qml", {
                model: bar.model,
                followUpLabel: Qt.binding(() => bar.followUpLabel),
                isSelectionUnknown: Qt.binding(() => selection.isUnknown),
                above: Qt.binding(() => Qt.rect(bar.x, bar.y, bar.width, ground.height))
            })
        if (output.isWanted && !output.active) {
            makePopover(output, "FullOutput.qml", {
                text: Qt.binding(() => output.isWanted ? bar.model.fullOutput : ""),
                above: Qt.binding(() => Qt.rect(bar.x, bar.y, bar.width, ground.height))
            })
            output.item.dismissed.connect(() => bar.fullCommandOutputShowing = false)
            output.item.escaped.connect(() => {
                bar.fullCommandOutputShowing = false
                bar.focusResult()
            })
        }
        if (history.isWanted && !history.active)
            makePopover(history, "History.qml", {
                model: bar.model,
                contentWidth: 360,
                above: Qt.binding(() => (bar.width, bar.promptState, bar.standOf(clock)))
            })
    }
    Loader {
        id: prediction
        readonly property bool isWanted: bar.model.isPredictionShown && bar.hasPrediction
        active: false
        onIsWantedChanged: Qt.callLater(bar.makeWanted)
    }
    Loader {
        id: output
        readonly property bool isWanted: bar.fullCommandOutputShowing && bar.hasOutput
        active: false
        onIsWantedChanged: Qt.callLater(bar.makeWanted)
    }
    Loader {
        id: history
        readonly property bool isWanted: bar.model.isHistoryShown
        active: false
        onIsWantedChanged: {
            Qt.callLater(bar.makeWanted)
            if (!isWanted && active)
                bar.focusResult()
        }
    }
}
