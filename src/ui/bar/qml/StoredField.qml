import QtQuick

// A field whose text is kept elsewhere: what is typed is stored when the field is left or Return is pressed, and what
// changes elsewhere meanwhile doesn't disturb the typing.
//
//     StoredField { theme: theme; stored: model.selected.modelName; onEdited: text => model.edit("modelName", text) }
Field {
    id: field

    property string stored: ""
    property bool isSecret: false

    signal edited(string text)

    function commit() {
        if (text !== stored)
            edited(text)
        text = stored  // as it was taken
    }

    echoMode: isSecret ? TextInput.Password : TextInput.Normal
    inputMethodHints: isSecret ? Qt.ImhHiddenText | Qt.ImhSensitiveData | Qt.ImhNoPredictiveText : Qt.ImhNone
    Component.onCompleted: text = stored
    onStoredChanged: if (!activeFocus) text = stored
    onEditingFinished: commit()
    onVisibleChanged: if (!visible) commit()
    onActiveFocusChanged: {
        if (activeFocus)
            return
        commit()
        cursorPosition = 0
    }
    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Escape && text !== stored
    Keys.onEscapePressed: event => {
        event.accepted = text !== stored
        text = stored
    }
}
