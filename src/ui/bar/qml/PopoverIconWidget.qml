import QtQuick

// An icon that a click opens and closes a popover on.
BarButton {
    id: widget

    property string iconName: ""
    property color iconColor: theme.primary
    property bool showing: false

    signal flipped(bool showing)
    signal popoverHidden()

    symbol: iconName
    symbolColor: iconColor
    symbolSize: 20
    checked: showing
    onClicked: {
        const shows = !showing
        flipped(shows)
        if (!shows)
            popoverHidden()
    }
}
