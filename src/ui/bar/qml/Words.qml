import QtQuick

// A text in one of the sizes and colours of all windows.
//
//     Words { theme: theme; kind: "note"; text: "Small, fast models are best for this." }
Text {
    required property var theme
    property string kind: "body"  // "title", "heading", "body", "note", "problem"

    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    lineHeight: 1.15
    font.pixelSize: kind === "title" ? 22 : kind === "note" || kind === "problem" ? theme.small + 1 : theme.body
    font.weight: kind === "title" || kind === "heading" ? Font.DemiBold : Font.Normal
    color: kind === "note" ? theme.secondary : kind === "problem" ? theme.named("red") : theme.primary
}
