// Shotcut's entry for the filter. Shotcut sets frei0r parameters by their numbers.
import QtQuick 2.0
import org.shotcut.qml 1.0

Metadata {
    type: Metadata.Filter
    name: qsTr('Four Corners in Perspective')
    keywords: 'corner pin perspective distort stretch screen replacement vantorel'
    mlt_service: 'frei0r.vantorel'
    objectName: 'vantorel'
    qml: 'ui.qml'
    vui: 'vui.qml'

    keyframes {
        allowAnimateIn: true
        allowAnimateOut: true
        simpleProperties: ['0', '1', '2', '3', '4', '5', '6', '7', '9']
        parameters: [
            Parameter {
                name: qsTr('Upper left X')
                property: '0'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: qsTr('Upper left Y')
                property: '1'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: qsTr('Upper right X')
                property: '2'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: qsTr('Upper right Y')
                property: '3'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: qsTr('Lower left X')
                property: '4'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: qsTr('Lower left Y')
                property: '5'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: qsTr('Lower right X')
                property: '6'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: qsTr('Lower right Y')
                property: '7'
                isCurve: true
                minimum: 0
                maximum: 1
            },
            Parameter {
                name: qsTr('Opacity')
                property: '9'
                isCurve: true
                minimum: 0
                maximum: 1
            }
        ]
    }
}
