import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import QtCharts 2.15

// One counter of the diagnostics compared across the devices of the table,
// as bars; the counter is picked here or by a click on a heading.
ColumnLayout {
    id: chartPane
    property var view: null
    // Colours of the view around it (a chart has no palette of its own).
    readonly property var pal: view ? view.palette : null
    readonly property var rows: view ? view.rows : null
    // Bars drawn: how many devices have a value of the counter.
    property int bars: 0

    function refresh() {
        if (!view || !rows)
            return
        var key = view.chartKey
        var names = [], values = [], top = 0
        for (var i = 0; i < rows.count; ++i) {
            var row = rows.get(i)
            if (row[key] === undefined || row[key] < 0)
                continue
            // The node number without its leading zeros: short enough under a bar.
            names.push(row.name.split(" ")[0].replace(/^0x0*/, "") || "0")
            values.push(row[key])
            top = Math.max(top, row[key])
        }
        series.clear()
        axisX.categories = names
        // A round top for the scale: 1, 2 or 5 times a power of ten.
        var step = Math.pow(10, Math.floor(Math.log(Math.max(1, top)) / Math.LN10))
        var round = [1, 2, 5, 10].map(function(m) { return m * step }).filter(function(v) { return v >= top })[0]
        axisY.max = Math.max(1, round)
        var counter = view.counter(key)
        series.append(counter ? counter.title : key, values)
        bars = values.length
    }

    Connections {
        target: chartPane.rows
        function onDataChanged() { refreshLater.restart() }
        function onRowsMoved() { refreshLater.restart() }
        function onCountChanged() { refreshLater.restart() }
    }
    Connections {
        target: chartPane.view
        function onChartKeyChanged() { chartPane.refresh() }
    }
    Timer { id: refreshLater; interval: 50; onTriggered: chartPane.refresh() }
    Component.onCompleted: refreshLater.restart()
    onViewChanged: refreshLater.restart()

    RowLayout {
        Label { text: qsTr("Chart of") }
        ComboBox {
            id: pick
            objectName: "chartCounter"
            Layout.preferredWidth: 260
            model: chartPane.view ? chartPane.view.allCounters : []
            textRole: "title"
            currentIndex: {
                var list = chartPane.view ? chartPane.view.allCounters : []
                for (var i = 0; i < list.length; ++i)
                    if (list[i].key === chartPane.view.chartKey) return i
                return -1
            }
            onActivated: function(index) { chartPane.view.chartKey = chartPane.view.allCounters[index].key }
        }
        Label {
            visible: chartPane.bars === 0
            text: qsTr("no device has a value of it yet")
            opacity: 0.7
        }
    }
    ChartView {
        Layout.fillWidth: true
        Layout.fillHeight: true
        antialiasing: true
        legend.visible: false
        backgroundColor: pal.base
        plotAreaColor: pal.base
        titleColor: pal.text
        BarSeries {
            id: series
            axisX: BarCategoryAxis { id: axisX; labelsColor: pal.text; labelsAngle: -30 }
            axisY: ValueAxis { id: axisY; min: 0; tickCount: 6; labelFormat: "%d"; labelsColor: pal.text }
        }
    }
}
