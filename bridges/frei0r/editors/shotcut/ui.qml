// The filter's controls. Positions are shown in percent of the picture: 0 is its left or upper border, 100 the right or
// lower one; the filter's own numbers have these at 1/3 and 2/3.
import QtQuick 2.12
import QtQuick.Controls 2.12
import QtQuick.Layouts 1.12
import Shotcut.Controls 1.0 as Shotcut

Shotcut.KeyframableFilter {
    readonly property string quality: '8'
    readonly property string opaqueOutside: '10'
    readonly property var qualities: ['standard', 'high', 'best']
    // What the sliders set: the parameter, its own picture's value in percent, and what 0 and 100 % are to the filter.
    readonly property var sliders: [
        { name: qsTr('Upper left X'), parameter: '0', initial: 0, low: 1 / 3, high: 2 / 3 },
        { name: qsTr('Upper left Y'), parameter: '1', initial: 0, low: 1 / 3, high: 2 / 3 },
        { name: qsTr('Upper right X'), parameter: '2', initial: 100, low: 1 / 3, high: 2 / 3 },
        { name: qsTr('Upper right Y'), parameter: '3', initial: 0, low: 1 / 3, high: 2 / 3 },
        { name: qsTr('Lower left X'), parameter: '4', initial: 0, low: 1 / 3, high: 2 / 3 },
        { name: qsTr('Lower left Y'), parameter: '5', initial: 100, low: 1 / 3, high: 2 / 3 },
        { name: qsTr('Lower right X'), parameter: '6', initial: 100, low: 1 / 3, high: 2 / 3 },
        { name: qsTr('Lower right Y'), parameter: '7', initial: 100, low: 1 / 3, high: 2 / 3 },
        { name: qsTr('Opacity'), parameter: '9', initial: 100, low: 0, high: 1 }
    ]

    function toFilter(slider, percent) {
        return slider.low + (slider.high - slider.low) * percent / 100;
    }

    function toPercent(slider, value) {
        // To a millionth, for the digits that are shown are not rounded.
        return Math.round(1e8 * (value - slider.low) / (slider.high - slider.low)) / 1e6;
    }

    function setControls() {
        const position = getPosition();
        const isSimple = filter.animateIn > 0 || filter.animateOut > 0;
        blockUpdate = true;
        sliders.forEach((slider, i) => {
            const row = rows.itemAt(i);
            row.percent = toPercent(slider, filter.getDouble(slider.parameter, position));
            row.hasKeyframes = !isSimple && filter.keyframeCount(slider.parameter) > 0;
            row.enabled = isSimpleKeyframesActive();
        });
        qualityBox.currentIndex = Math.max(0, qualities.indexOf(filter.get(quality)));
        opaqueBox.checked = filter.getDouble(opaqueOutside) >= 0.5;
        blockUpdate = false;
    }

    function updateSimpleKeyframes() {
        setControls();
        sliders.forEach((slider, i) => rows.itemAt(i).apply(null));
    }

    keyframableParameters: sliders.map(slider => slider.parameter)
    startValues: sliders.map(slider => toFilter(slider, slider.initial))
    middleValues: sliders.map(slider => toFilter(slider, slider.initial))
    endValues: sliders.map(slider => toFilter(slider, slider.initial))
    width: 420
    height: 420
    Component.onCompleted: {
        if (filter.isNew) {
            sliders.forEach(slider => filter.set(slider.parameter, toFilter(slider, slider.initial)));
            filter.set(quality, 'high');
            filter.set(opaqueOutside, 0);
            filter.savePreset(preset.parameters);
        }
        setControls();
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 8

        RowLayout {
            Label {
                text: qsTr('Preset')
                Layout.preferredWidth: 120
            }

            Shotcut.Preset {
                id: preset

                parameters: keyframableParameters.concat([quality, opaqueOutside])
                onBeforePresetLoaded: resetSimpleKeyframes()
                onPresetSelected: {
                    setControls();
                    initializeSimpleKeyframes();
                }
            }
        }

        Repeater {
            id: rows

            model: sliders

            RowLayout {
                property alias percent: spinner.value
                property alias hasKeyframes: keyframesButton.checked

                function apply(position) {
                    updateFilter(modelData.parameter, toFilter(modelData, percent), keyframesButton, position);
                }

                Label {
                    text: modelData.name
                    Layout.preferredWidth: 120
                }

                Shotcut.SliderSpinner {
                    id: spinner

                    minimumValue: toPercent(modelData, 0)
                    maximumValue: toPercent(modelData, 1)
                    decimals: 2
                    suffix: ' %'
                    onValueChanged: apply(getPosition())
                }

                Shotcut.UndoButton {
                    onClicked: percent = modelData.initial
                }

                Shotcut.KeyframesButton {
                    id: keyframesButton

                    onToggled: {
                        toggleKeyframes(checked, modelData.parameter, toFilter(modelData, percent));
                        setControls();
                    }
                }
            }
        }

        RowLayout {
            Label {
                text: qsTr('Quality')
                Layout.preferredWidth: 120
            }

            Shotcut.ComboBox {
                id: qualityBox

                model: [qsTr('Standard'), qsTr('High'), qsTr('Best')]
                onActivated: filter.set(quality, qualities[index])
            }
        }

        CheckBox {
            id: opaqueBox

            text: qsTr('Opaque outside')
            onClicked: filter.set(opaqueOutside, checked ? 1 : 0)
        }

        Item {
            Layout.fillHeight: true
        }
    }

    Connections {
        function onChanged() {
            setControls();
        }

        function onInChanged() {
            updateSimpleKeyframes();
        }

        function onOutChanged() {
            updateSimpleKeyframes();
        }

        function onAnimateInChanged() {
            updateSimpleKeyframes();
        }

        function onAnimateOutChanged() {
            updateSimpleKeyframes();
        }

        target: filter
    }

    Connections {
        function onPositionChanged() {
            setControls();
        }

        target: producer
    }
}
