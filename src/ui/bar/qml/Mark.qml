import QtQuick
import QtQuick.Shapes

// The program's own picture: a bar beneath a window.
Item {
    id: mark

    property real size: 72

    width: size
    height: size

    // Drawn as a path, since the ground's corners are smooth only then.
    Shape {
        width: 100
        height: 100
        transformOrigin: Item.TopLeft
        scale: mark.size / 100
        ShapePath {
            strokeWidth: -1
            fillGradient: LinearGradient {
                y2: 100
                GradientStop { position: 0; color: "#5b8cff" }
                GradientStop { position: 1; color: "#6a3fe0" }
            }
            PathSvg { path: "M24 0h52a24 24 0 0 1 24 24v52a24 24 0 0 1-24 24H24a24 24 0 0 1-24-24V24a24 24 0 0 1 24-24z" }
        }
    }
    Rectangle {
        x: mark.size * 0.22
        y: mark.size * 0.2
        width: mark.size * 0.56
        height: mark.size * 0.34
        radius: mark.size * 0.06
        color: "#59ffffff"
        Row {
            x: mark.size * 0.05
            y: mark.size * 0.05
            spacing: mark.size * 0.03
            Repeater {
                model: 3
                Rectangle {
                    width: mark.size * 0.05
                    height: width
                    radius: width / 2
                    color: "#b3ffffff"
                }
            }
        }
    }
    Rectangle {
        x: mark.size * 0.16
        y: mark.size * 0.6
        width: mark.size * 0.68
        height: mark.size * 0.2
        radius: height / 2
        color: "white"
        Rectangle {
            x: parent.radius
            width: Math.max(1.5, mark.size * 0.03)
            height: parent.height * 0.56
            anchors.verticalCenter: parent.verticalCenter
            radius: width / 2
            color: "#6a3fe0"
        }
    }
}
