import QtQuick 2.15
import QtQuick.Controls 2.15
import QtCharts 2.15

// Frames and errors per second on the open bus over the last minutes.
ChartView {
    id: chart
    property var view: null
    readonly property var samples: view ? view.samples : []
    // Colours of the view around it (a chart has no palette of its own).
    readonly property var pal: view ? view.palette : null
    antialiasing: true
    legend.alignment: Qt.AlignBottom
    legend.labelColor: pal.text
    backgroundColor: pal.base
    plotAreaColor: pal.base

    onSamplesChanged: {
        frames.clear()
        errors.clear()
        var top = 1
        var n = samples.length
        for (var i = 0; i < n; ++i) {
            var t = (i - n + 1) / 60
            frames.append(t, samples[i].frames)
            errors.append(t, samples[i].errors)
            top = Math.max(top, samples[i].frames, samples[i].errors)
        }
        var step = Math.pow(10, Math.floor(Math.log(top) / Math.LN10))
        axisY.max = [1, 2, 5, 10].map(function(m) { return m * step }).filter(function(v) { return v >= top })[0]
    }

    ValueAxis {
        id: axisX
        min: view ? -view.minutes : -5
        max: 0
        tickCount: 6
        labelFormat: "%.0f"
        titleText: qsTr("minutes")
        labelsColor: pal.text
        titleBrush: pal.text
    }
    ValueAxis {
        id: axisY
        min: 0
        max: 10
        tickCount: 3
        labelFormat: "%g"
        titleText: qsTr("per second")
        labelsColor: pal.text
        titleBrush: pal.text
    }
    LineSeries { id: frames; name: qsTr("Frames"); axisX: axisX; axisY: axisY; width: 2 }
    LineSeries { id: errors; name: qsTr("Errors"); axisX: axisX; axisY: axisY; width: 2; color: "firebrick" }
}
