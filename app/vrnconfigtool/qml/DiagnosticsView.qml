import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0
import "Format.js" as Format

// The network statistics of the selected devices and the life counters of
// the motors among them, read from each device: one table per group of
// counters (a row per device, sortable by any counter), a bar chart of one
// counter across the devices, and a reset that asks first.
Pane {
    id: view
    property ObjectQueryModel devices
    property var jobs
    readonly property var selection: devices ? devices.selection : null
    property alias rows: rowModel
    property int busy: 0
    // The counter group shown and the counter the rows are sorted by.
    property int groupIndex: 0
    property string sortKey: ""
    property bool sortDescending: false
    property string chartKey: "frameSent"

    // Counters by group, with their headings and units.
    readonly property var groups: [
        { title: qsTr("Traffic"), counters: [
            { key: "frameSent", title: qsTr("Frames sent"), unit: qsTr("frames") },
            { key: "frameReceived", title: qsTr("Frames received"), unit: qsTr("frames") },
            { key: "frameSeen", title: qsTr("Frames seen"), unit: qsTr("frames") },
            { key: "busyCount", title: qsTr("Bus busy"), unit: qsTr("times") },
            { key: "maxRetryCount", title: qsTr("Most retries"), unit: qsTr("retries") },
            { key: "maxSlot", title: qsTr("Highest slot"), unit: "" },
            { key: "supervisionFailure", title: qsTr("Supervision failures"), unit: qsTr("times") } ] },
        { title: qsTr("Errors"), counters: [
            { key: "txFailures", title: qsTr("Send failures"), unit: qsTr("frames") },
            { key: "collisions", title: qsTr("Collisions"), unit: qsTr("times") },
            { key: "rxDataError", title: qsTr("Receive errors"), unit: qsTr("frames") },
            { key: "unknownMessage", title: qsTr("Unknown messages"), unit: qsTr("frames") },
            { key: "msgLengthError", title: qsTr("Wrong lengths"), unit: qsTr("frames") },
            { key: "crcError", title: qsTr("Checksum errors"), unit: qsTr("frames") },
            { key: "rxFifoFull", title: qsTr("Receive buffer full"), unit: qsTr("times") },
            { key: "txFifoFull", title: qsTr("Send buffer full"), unit: qsTr("times") },
            { key: "bundleSizeError", title: qsTr("Bundle size errors"), unit: qsTr("times") } ] },
        { title: qsTr("Motor life"), motor: true, counters: [
            { key: "totalMoveCount", title: qsTr("Moves"), unit: qsTr("moves") },
            { key: "totalRevCount", title: qsTr("Revolutions"), unit: qsTr("turns") },
            { key: "thermalCount", title: qsTr("Thermal trips"), unit: qsTr("times") },
            { key: "postThermalMove", title: qsTr("Moves after a thermal trip"), unit: qsTr("moves") },
            { key: "obstacleCount", title: qsTr("Obstacles"), unit: qsTr("times") },
            { key: "postObstacleMove", title: qsTr("Moves after an obstacle"), unit: qsTr("moves") },
            { key: "powerCount", title: qsTr("Power cuts"), unit: qsTr("times") },
            { key: "resetCount", title: qsTr("Restarts"), unit: qsTr("times") },
            { key: "encoderErrCount", title: qsTr("Encoder errors"), unit: qsTr("times") } ] }
    ]
    readonly property var allCounters: groups[0].counters.concat(groups[1].counters, groups[2].counters)
    readonly property var shownCounters: groups[groupIndex].counters
    function counter(key) {
        for (var i = 0; i < allCounters.length; ++i)
            if (allCounters[i].key === key) return allCounters[i]
        return null
    }
    // Every row starts with every counter "not read" (-1).
    function unread() {
        var out = {}
        for (var i = 0; i < allCounters.length; ++i)
            out[allCounters[i].key] = -1
        return out
    }

    // Reads the statistics (and the motors' counters) of every selected
    // device; the number of devices.
    function read() {
        return runOnSelection(function(row) {
            rowModel.run(jobs, row, "GetNetworkStatsJob", {}, function(ok) { take(row); done() })
            if (rowModel.get(row).motor)
                rowModel.run(jobs, row, "GetMotorDiagnosticJob", {}, function(ok) { take(row); done() })
        })
    }
    // Clears the statistics of every selected device (`stats`: a
    // SetNetworkStatsJob.Stats value) and shows them read back.
    function reset(stats) {
        return runOnSelection(function(row) {
            rowModel.run(jobs, row, "SetNetworkStatsJob", { stats: stats === undefined ? SetNetworkStatsJob.All : stats },
                         function(ok) { take(row); done() })
        })
    }
    function runOnSelection(start) {
        rowModel.fill(selection, unread())
        for (var row = 0; row < rowModel.count; ++row)
            start(row)
        done()
        return rowModel.count
    }
    function done() { busy = rowModel.busyCount() }
    // Copies what the device's runtime record knows into its row.
    function take(row) {
        if (row >= rowModel.count)
            return
        var shared = ObjectFactory.objectQml(view, rowModel.get(row).uuid)
        var records = recordsComponent.createObject(view, { device: shared ? shared.data : null })
        var known = Format.known(records.runtime)
        for (var i = 0; i < allCounters.length; ++i) {
            var key = allCounters[i].key
            if (known[key] !== undefined)
                rowModel.setProperty(row, key, Number(known[key]))
        }
        records.destroy()
        if (shared)
            shared.destroy()
        if (sortKey !== "")
            sortRows()
    }
    function sortBy(key) {
        sortDescending = sortKey === key ? !sortDescending : true
        sortKey = key
        sortRows()
    }
    // Insertion sort of the rows by the chosen counter; rows not read last.
    function sortRows() {
        var key = sortKey
        var before = function(a, b) {
            var x = rowModel.get(a)[key], y = rowModel.get(b)[key]
            if (x < 0 || y < 0) return x >= 0 && y < 0
            return sortDescending ? x > y : x < y
        }
        for (var i = 1; i < rowModel.count; ++i) {
            var j = i
            while (j > 0 && before(i, j - 1)) --j
            if (j !== i) rowModel.move(i, j, 1)
        }
    }
    function valueText(row, key) {
        var v = row[key]
        return v === undefined || v < 0 ? qsTr("not read") : Number(v).toLocaleString(Qt.locale(), "f", 0)
    }

    readonly property var resetChoices: [
        { title: qsTr("Traffic counters"), clears: qsTr("frames sent, received and seen, bus busy, most retries, highest slot, supervision failures") },
        { title: qsTr("Error counters"), clears: qsTr("send failures, collisions, receive errors, unknown messages, wrong lengths, checksum errors, full buffers, bundle size errors") },
        { title: qsTr("All network counters"), clears: qsTr("every traffic and error counter") }
    ]

    SelectionRows { id: rowModel }
    Component { id: recordsComponent; DeviceRecords {} }
    FontMetrics { id: fm }

    Dialog {
        id: confirmReset
        objectName: "confirmReset"
        anchors.centerIn: Overlay.overlay
        modal: true
        title: qsTr("Reset the statistics of %1 devices?").arg(view.selection ? view.selection.rowCount : 0)
        standardButtons: Dialog.Reset | Dialog.Cancel
        ColumnLayout {
            Label {
                objectName: "resetExplanation"
                // Only while open (see AskFirst.qml).
                text: confirmReset.visible ? qsTr("Clears on each selected device: %1.").arg(view.resetChoices[resetWhat.currentIndex].clears) : ""
                wrapMode: Text.Wrap
                Layout.maximumWidth: fm.averageCharacterWidth * 70
            }
            Label {
                text: qsTr("The motors' life counters (moves, thermal trips, power cuts\u2026) cannot be cleared and stay.")
                wrapMode: Text.Wrap
                Layout.maximumWidth: fm.averageCharacterWidth * 70
            }
        }
        onReset: { close(); view.reset(resetWhat.currentIndex) }
    }

    ColumnLayout {
        anchors.fill: parent
        RowLayout {
            Label { text: qsTr("Devices selected: %1").arg(view.selection ? view.selection.rowCount : 0) }
            Button {
                objectName: "readDiagnostics"
                text: qsTr("Read (F5)")
                enabled: view.busy === 0
                onClicked: view.read()
            }
            Item { Layout.preferredWidth: 20 }
            ComboBox {
                id: resetWhat
                Layout.preferredWidth: fm.averageCharacterWidth * 28
                model: view.resetChoices
                textRole: "title"
                currentIndex: 2
            }
            Button {
                objectName: "resetStatistics"
                text: qsTr("Reset\u2026")
                enabled: view.busy === 0 && view.selection && view.selection.rowCount > 0
                ToolTip.visible: hovered
                ToolTip.text: qsTr("Clears %1 on the selected devices").arg(view.resetChoices[resetWhat.currentIndex].clears)
                onClicked: confirmReset.open()
            }
            BusyIndicator { running: view.busy > 0; implicitHeight: 32; implicitWidth: 32 }
        }
        TabBar {
            id: groupTabs
            Layout.fillWidth: true
            currentIndex: view.groupIndex
            onCurrentIndexChanged: view.groupIndex = currentIndex
            Repeater {
                model: view.groups
                TabButton { text: modelData.title }
            }
        }
        SplitView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            orientation: Qt.Vertical
            ListView {
                id: table
                objectName: "diagnosticRows"
                SplitView.fillHeight: true
                SplitView.minimumHeight: 120
                clip: true
                model: rowModel
                headerPositioning: ListView.OverlayHeader
                ScrollBar.vertical: ScrollBar {}
                ScrollBar.horizontal: ScrollBar {}
                flickableDirection: Flickable.AutoFlickIfNeeded
                contentWidth: fm.averageCharacterWidth * (30 + 19 * view.shownCounters.length)
                readonly property real cellWidth: fm.averageCharacterWidth * 19
                header: Rectangle {
                    z: 2
                    width: table.contentWidth
                    height: headRow.height
                    color: palette.button
                    Row {
                        id: headRow
                        Label { width: fm.averageCharacterWidth * 30; height: fm.height * 3.6; text: qsTr("Device"); font.bold: true; padding: 4 }
                        Repeater {
                            model: view.shownCounters
                            ItemDelegate {
                                objectName: "counterHeading"
                                width: table.cellWidth
                                height: headRow.implicitHeight
                                padding: 4
                                background: Rectangle { color: parent.hovered ? palette.midlight : "transparent" }
                                contentItem: Column {
                                    Label {
                                        width: parent.width
                                        text: modelData.title + (view.sortKey === modelData.key ? (view.sortDescending ? " \u25BC" : " \u25B2") : "")
                                        font.bold: true
                                        wrapMode: Text.WordWrap
                                        maximumLineCount: 2
                                        elide: Text.ElideRight
                                    }
                                    Label { text: modelData.unit; opacity: 0.7; font.pointSize: Qt.application.font.pointSize * 0.85 }
                                }
                                onClicked: { view.sortBy(modelData.key); view.chartKey = modelData.key }
                                ToolTip.visible: hovered
                                ToolTip.text: qsTr("Sort by %1 and show it in the chart").arg(modelData.title.toLowerCase())
                            }
                        }
                    }
                }
                delegate: Row {
                    id: entry
                    readonly property var row: model
                    readonly property bool applies: !view.groups[view.groupIndex].motor || model.motor
                    Label {
                        objectName: "deviceName"
                        width: fm.averageCharacterWidth * 30
                        padding: 4
                        text: model.name
                        elide: Text.ElideRight
                    }
                    Repeater {
                        model: view.shownCounters
                        Label {
                            objectName: "counter_" + modelData.key
                            width: table.cellWidth
                            padding: 4
                            horizontalAlignment: Text.AlignRight
                            rightPadding: fm.averageCharacterWidth * 3
                            text: !entry.applies ? qsTr("not a motor") : view.valueText(entry.row, modelData.key)
                            opacity: !entry.applies || entry.row[modelData.key] < 0 ? 0.55 : 1
                            font.italic: !entry.applies || entry.row[modelData.key] < 0
                        }
                    }
                    Label {
                        id: errorLabel
                        visible: model.error !== ""
                        text: model.error
                        color: "firebrick"
                        padding: 4
                        width: fm.averageCharacterWidth * 40
                        elide: Text.ElideRight
                        MouseArea { id: errHover; anchors.fill: parent; hoverEnabled: true }
                        ToolTip.visible: errHover.containsMouse && errorLabel.truncated
                        ToolTip.text: model.error
                    }
                }
                Label {
                    anchors.centerIn: parent
                    visible: rowModel.count === 0
                    text: qsTr("Select devices in the device list, then read their counters.")
                    opacity: 0.7
                }
            }
            Loader {
                id: chart
                objectName: "diagnosticChart"
                SplitView.preferredHeight: 260
                active: rowModel.count > 0
                source: "DiagnosticsChart.qml"
                onLoaded: item.view = view
            }
        }
    }
}
