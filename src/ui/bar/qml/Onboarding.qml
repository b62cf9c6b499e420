import QtQuick
import QtQuick.Window

// The first-run pages. The window is closed by the last of them; before that, closing it is asked about.
Window {
    id: window

    required property var model

    width: 560
    height: 580
    minimumWidth: 480
    minimumHeight: 460
    title: "Brindlet Onboarding"
    color: windowTheme.surface
    onClosing: close => close.accepted = model.mayClose()
    // Hidden by its closing, in whatever way that came about.
    property bool wasShown: false
    onVisibleChanged: {
        if (visible)
            wasShown = true
        else if (wasShown) {
            wasShown = false
            model.hasClosed()
        }
    }

    Theme { id: windowTheme }

    Loader {
        id: page
        objectName: "page"
        anchors.fill: parent
        anchors.bottomMargin: foot.height
        readonly property var sources: ({welcome: "OnboardingWelcome.qml", privacy: "OnboardingPrivacy.qml",
                                         accessibilityPermission: "OnboardingPermission.qml",
                                         appleEventsPermission: "OnboardingPermission.qml"})
        function load() {
            setSource(sources[window.model.page], {theme: windowTheme, model: window.model})
        }
        Component.onCompleted: load()
        Connections {
            target: window.model
            function onPageChanged() { page.load() }
        }
    }
    Rectangle {
        id: foot
        z: 1  // what is scrolled out of the page may not show on it
        color: window.color
        width: parent.width
        height: 68
        anchors.bottom: parent.bottom

        Row {
            x: 32
            anchors.verticalCenter: parent.verticalCenter
            spacing: 8
            Accessible.role: Accessible.StaticText
            Accessible.name: "Page " + (window.model.pageIndex + 1) + " of 4"
            Repeater {
                model: 4
                Rectangle {
                    required property int index
                    width: 7
                    height: 7
                    radius: 3.5
                    color: index === window.model.pageIndex ? windowTheme.accent : windowTheme.line
                }
            }
        }
        PlainButton {
            objectName: "continue"
            anchors.right: parent.right
            anchors.rightMargin: 32
            anchors.verticalCenter: parent.verticalCenter
            width: 112
            height: 32
            theme: windowTheme
            focus: true
            isProminent: true
            text: "Continue"
            enabled: window.model.canContinue
            onClicked: window.model.goOn()
        }
    }
    Alert {
        objectName: "quitAlert"
        theme: windowTheme
        isShown: window.model.isQuitAsked
        title: "Quit?"
        text: "You'll need to complete setup before you can use Brindlet."
        yes: "Quit"
        onAnswered: isAgreed => window.model.answerQuit(isAgreed)
    }
}
