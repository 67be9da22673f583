// The four corners on the picture, as handles that can be dragged, also beyond its borders.
import QtQuick 2.12
import Shotcut.Controls 1.0 as Shotcut

Shotcut.VuiBase {
    id: root

    // In picture sizes from the upper left: upper left, upper right, lower left, lower right.
    property var corners: [Qt.point(0, 0), Qt.point(1, 0), Qt.point(0, 1), Qt.point(1, 1)]
    property real zoom: video.zoom > 0 ? video.zoom : 1

    function readCorners() {
        const position = keyframes.getPosition();
        const coordinate = number => 3 * filter.getDouble(String(number), position) - 1;
        corners = [0, 1, 2, 3].map(i => Qt.point(coordinate(2 * i), coordinate(2 * i + 1)));
        outline.requestPaint();
    }

    function setCoordinate(number, sizes) {
        const value = Math.max(0, Math.min(1, (sizes + 1) / 3));
        const hasKeyframes = filter.keyframeCount(String(number)) > 0;
        keyframes.updateFilter(String(number), value, { checked: hasKeyframes }, keyframes.getPosition());
    }

    Component.onCompleted: {
        keyframes.blockUpdate = false;
        readCorners();
    }

    Shotcut.KeyframableFilter {
        id: keyframes

        keyframableParameters: ['0', '1', '2', '3', '4', '5', '6', '7']
        startValues: [1, 1, 2, 1, 1, 2, 2, 2].map(thirds => thirds / 3)
        middleValues: [1, 1, 2, 1, 1, 2, 2, 2].map(thirds => thirds / 3)
        endValues: [1, 1, 2, 1, 1, 2, 2, 2].map(thirds => thirds / 3)
    }

    // The picture as it is shown. Handles lie outside of it as well.
    Item {
        id: picture

        x: video.rect.x + video.rect.width * (1 - zoom) / 2 - video.offset.x
        y: video.rect.y + video.rect.height * (1 - zoom) / 2 - video.offset.y
        width: video.rect.width * zoom
        height: video.rect.height * zoom

        Canvas {
            id: outline

            x: -picture.x
            y: -picture.y
            width: root.width
            height: root.height
            onPaint: {
                const context = getContext('2d');
                context.reset();
                context.strokeStyle = 'white';
                context.beginPath();
                [0, 1, 3, 2].forEach((corner, i) => {
                    const x = picture.x + corners[corner].x * picture.width;
                    const y = picture.y + corners[corner].y * picture.height;
                    i === 0 ? context.moveTo(x, y) : context.lineTo(x, y);
                });
                context.closePath();
                context.stroke();
            }
        }

        Repeater {
            model: 4

            Rectangle {
                id: handle

                width: 14
                height: 14
                radius: 7
                border.color: 'white'
                color: drag.pressed ? 'white' : '#80000000'
                x: corners[index].x * picture.width - width / 2
                y: corners[index].y * picture.height - height / 2

                MouseArea {
                    id: drag

                    anchors.fill: parent
                    cursorShape: Qt.SizeAllCursor
                    onPositionChanged: {
                        const at = mapToItem(picture, mouse.x, mouse.y);
                        setCoordinate(2 * index, at.x / picture.width);
                        setCoordinate(2 * index + 1, at.y / picture.height);
                        readCorners();
                    }
                }
            }
        }

        onWidthChanged: outline.requestPaint()
        onHeightChanged: outline.requestPaint()
    }

    Connections {
        function onChanged() {
            readCorners();
        }

        target: filter
    }

    Connections {
        function onPositionChanged() {
            readCorners();
        }

        target: producer
    }
}
