import QtQuick

// The colours and sizes of all windows, light or dark as the desktop's palette is. Distances are multiples of 4.
QtObject {
    readonly property SystemPalette palette: SystemPalette {}
    readonly property bool isDark: palette.window.hslLightness < 0.5

    // Grounds, from the back to the front.
    readonly property color surface: isDark ? "#2a2a2d" : "#f5f5f7"
    readonly property color panel: isDark ? "#343438" : "#ffffff"
    readonly property color field: isDark ? "#1d1d20" : "#ffffff"
    readonly property color line: isDark ? "#47474d" : "#d9d9de"
    readonly property color hover: isDark ? "#16ffffff" : "#0e000000"
    readonly property color press: isDark ? "#26ffffff" : "#1c000000"
    readonly property color shadow: "black"

    readonly property color primary: isDark ? "#f4f4f6" : "#1d1d1f"
    readonly property color secondary: isDark ? "#a5a5ad" : "#65656d"
    readonly property color tertiary: isDark ? "#7c7c85" : "#92929a"
    readonly property color accent: isDark ? "#3079ee" : "#1a6fe8"
    readonly property color accentText: "#ffffff"
    readonly property color link: isDark ? "#6aa9ff" : "#1563d2"

    // Pixels: one scale for all texts.
    readonly property int small: 11
    readonly property int body: 13
    readonly property int large: 14
    readonly property int title: 16
    readonly property string monospace: "monospace"

    readonly property int radius: 8
    readonly property int popoverRadius: 12
    readonly property int barRadius: 22

    readonly property var colors: isDark
        ? ({red: "#ff6961", green: "#3ecf7a", blue: "#5aa2ff", orange: "#f29a2e", yellow: "#e8c02e", medium: "#da7d00"})
        : ({red: "#d4282d", green: "#1e8e4e", blue: "#1a6fe8", orange: "#c76a00", yellow: "#a87b00", medium: "#da7d00"})

    // "red", "green", "blue", "orange", "yellow", "medium"; else the ordinary colour.
    function named(name) {
        return colors[name] || primary
    }
    function faded(color, alpha) {
        return Qt.rgba(color.r, color.g, color.b, alpha)
    }
}
