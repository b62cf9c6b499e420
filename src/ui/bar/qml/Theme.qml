import QtQuick

// The colours of the desktop's palette, light or dark.
QtObject {
    readonly property SystemPalette palette: SystemPalette {}
    readonly property bool isDark: palette.window.hslLightness < 0.5
    readonly property color surface: isDark ? "#2b2b2e" : "#f6f6f7"
    readonly property color panel: isDark ? "#1f1f22" : "#ffffff"
    readonly property color line: isDark ? "#48484c" : "#d4d4d8"
    readonly property color primary: isDark ? "#f2f2f4" : "#1c1c1e"
    readonly property color secondary: isDark ? "#a0a0a8" : "#6c6c74"
    readonly property color accent: "#2f7cf6"
    function named(name) {
        const colors = {red: "#e5484d", green: "#30a46c", blue: "#2f7cf6", orange: "#da7d00", yellow: "#c99700"}
        return colors[name] || primary
    }
}
