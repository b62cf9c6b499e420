import QtQuick

// The fields of the user's own model that is chosen.
Column {
    id: form

    required property var theme
    required property var models  // AIModelsPane
    readonly property var fields: models.selected

    width: parent ? parent.width : 0

    PanelRow {
        theme: form.theme
        labelWidth: 150
        text: "Model name"
        StoredField {
            objectName: "modelName"
            theme: form.theme
            width: parent.width
            placeholderText: "llama3.1"
            stored: form.fields.modelName || ""
            onEdited: text => form.models.edit("modelName", text)
        }
    }
    PanelRow {
        theme: form.theme
        labelWidth: 150
        text: "Friendly name"
        StoredField {
            objectName: "friendlyName"
            theme: form.theme
            width: parent.width
            placeholderText: "Optional"
            stored: form.fields.friendlyName || ""
            onEdited: text => form.models.edit("friendlyName", text)
        }
    }
    PanelRow {
        theme: form.theme
        labelWidth: 150
        text: "URL"
        Column {
            width: parent.width
            spacing: 4
            StoredField {
                objectName: "baseURL"
                theme: form.theme
                width: parent.width
                stored: form.fields.baseURL || ""
                onEdited: text => form.models.edit("baseURL", text)
            }
            Words {
                theme: form.theme
                kind: "note"
                width: parent.width
                textFormat: Text.StyledText
                text: "OpenAI API compatible base URL, <b>or</b> full URL to the <tt>/chat/completions</tt> endpoint"
            }
        }
    }
    PanelRow {
        theme: form.theme
        labelWidth: 150
        text: "API key"
        StoredField {
            objectName: "customKey"
            theme: form.theme
            width: parent.width
            isSecret: true
            placeholderText: "Optional"
            stored: form.models.selectedKey
            onEdited: text => form.models.setSelectedKey(text)
        }
    }
    PanelRow {
        theme: form.theme
        CheckRow {
            objectName: "setTemperature"
            theme: form.theme
            isSwitch: true
            width: form.width - 32
            text: "Set temperature to 0"
            isOn: form.fields.setTemperature || false
            onAsked: isOn => form.models.edit("setTemperature", isOn)
        }
    }
    PanelRow {
        theme: form.theme
        CheckRow {
            objectName: "fastMode"
            theme: form.theme
            isSwitch: true
            width: form.width - 32
            text: "Fast mode"
            isOn: form.fields.fastMode || false
            onAsked: isOn => form.models.edit("fastMode", isOn)
        }
    }
    PanelRow {
        theme: form.theme
        visible: (form.fields.problem || "") !== ""
        Words {
            objectName: "customProblem"
            theme: form.theme
            kind: "problem"
            width: form.width - 32
            text: form.fields.problem || ""
        }
    }
}
