import QtQuick

ScrollPane {
    id: pane

    required property var model
    readonly property var models: model.aiModels

    Words {
        theme: pane.theme
        kind: "heading"
        width: parent.width
        text: "Choose which models appear in the model selector:"
    }
    Repeater {
        model: pane.models.sections.length
        Panel {
            id: section
            required property int index
            readonly property var each: pane.models.sections[index]
            theme: pane.theme
            Item {
                width: parent.width
                height: 32
                Words {
                    theme: pane.theme
                    kind: "note"
                    x: 16
                    y: 12
                    font.weight: Font.DemiBold
                    text: section.each.title
                }
            }
            Repeater {
                model: section.each.models.length
                CheckRow {
                    required property int index
                    readonly property var each: section.each.models[index]
                    objectName: "model " + each.id
                    theme: pane.theme
                    x: 16
                    width: section.width - 32
                    height: 30
                    text: each.name
                    detail: each.usage
                    detailAt: 160
                    isOn: each.isOn
                    onAsked: isOn => pane.models.setEnabled(each.id, isOn)
                }
            }
            Item { width: 1; height: 8 }
        }
    }
    Item { width: 1; height: 4 }
    Words {
        theme: pane.theme
        kind: "heading"
        width: parent.width
        text: "API keys"
    }
    Panel {
        id: keyPanel
        objectName: "keys"
        theme: pane.theme
        Repeater {
            model: pane.models.keys.length
            PanelRow {
                required property int index
                readonly property var each: pane.models.keys[index]
                theme: pane.theme
                labelWidth: 150
                text: each.provider
                StoredField {
                    objectName: "key " + each.provider
                    theme: pane.theme
                    width: parent.width
                    isSecret: true
                    placeholderText: each.placeholder
                    stored: each.text
                    onEdited: text => pane.models.setKey(each.provider, text)
                }
            }
        }
    }
    Item { width: 1; height: 4 }
    Words {
        theme: pane.theme
        kind: "heading"
        width: parent.width
        text: "Custom models"
    }
    Panel {
        theme: pane.theme
        visible: pane.models.customModels.length > 0
        Repeater {
            model: pane.models.customModels.length
            Column {
                id: custom
                required property int index
                readonly property var each: pane.models.customModels[index] || ({id: "", title: ""})
                readonly property bool isSelected: each.id !== "" && each.id === pane.models.selectedId
                width: parent.width
                Item {
                    width: parent.width
                    height: 44
                    Rectangle {
                        visible: custom.index > 0
                        x: 16
                        width: parent.width - 16
                        height: 1
                        color: pane.theme.line
                        opacity: 0.7
                    }
                    CheckRow {
                        objectName: "custom " + custom.index
                        theme: pane.theme
                        x: 16
                        width: parent.width - 190
                        anchors.verticalCenter: parent.verticalCenter
                        text: custom.each.title
                        isOn: custom.each.isOn || false
                        onAsked: isOn => pane.models.setEnabled(custom.each.id, isOn)
                    }
                    Row {
                        anchors.right: parent.right
                        anchors.rightMargin: 16
                        anchors.verticalCenter: parent.verticalCenter
                        spacing: 8
                        Symbol {
                            visible: !custom.each.isValid
                            anchors.verticalCenter: parent.verticalCenter
                            name: "exclamationmark.triangle"
                            color: pane.theme.named("orange")
                        }
                        PlainButton {
                            objectName: "edit " + custom.index
                            theme: pane.theme
                            text: custom.isSelected ? "Done" : "Edit"
                            onClicked: {
                                pane.leaveFields()
                                pane.models.selectedId = custom.isSelected ? "" : custom.each.id
                            }
                        }
                        PlainButton {
                            objectName: "delete " + custom.index
                            theme: pane.theme
                            isDestructive: true
                            text: "Delete"
                            onClicked: pane.models.askToDelete(custom.each.id)
                        }
                    }
                }
                Loader {
                    width: parent.width
                    active: custom.isSelected
                    visible: active
                    sourceComponent: CustomModelForm {
                        theme: pane.theme
                        models: pane.models
                    }
                }
            }
        }
    }
    PlainButton {
        objectName: "addCustomModel"
        theme: pane.theme
        text: "Add new custom model..."
        onClicked: {
            pane.leaveFields()
            pane.models.addCustomModel()
        }
    }
    Words {
        objectName: "modelsProblem"
        theme: pane.theme
        kind: "problem"
        width: parent.width
        visible: text !== ""
        text: pane.models.problem
    }
    Item { width: 1; height: 4 }
    Panel {
        theme: pane.theme
        PanelRow {
            theme: pane.theme
            text: "Final summarization model:"
            detail: "Small, fast models such as GPT-4.1 nano are best for this."
            ModelPopup {
                objectName: "summarization"
                visible: hasModels
                theme: pane.theme
                isBordered: true
                sections: pane.models.summarizationSections
                selectedName: pane.models.summarizationName
                selectedTitle: pane.models.summarizationTitle
                onChosen: name => pane.models.selectSummarization(name)
            }
            Column {
                objectName: "noModels"
                visible: pane.models.summarizationSections.length === 0
                spacing: 2
                Words {
                    theme: pane.theme
                    text: "No models available"
                }
                TextLink {
                    objectName: "addKey"
                    theme: pane.theme
                    text: "Add an provider API key"
                    onClicked: pane.showKeys()
                }
            }
        }
    }

    // They store what they hold, before the form goes.
    function leaveFields() {
        forceActiveFocus()
    }
    function showKeys() {
        contentY = Math.min(keyPanel.y, contentHeight - height)
        keyPanel.nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
    }

    Alert {
        objectName: "deleteAlert"
        theme: pane.theme
        isShown: pane.models.isShowingDeleteConfirmation
        title: "Delete Custom Model"
        text: "Are you sure you want to delete this custom model?"
        yes: "Delete"
        onAnswered: isAgreed => pane.models.answerDelete(isAgreed)
    }
}
