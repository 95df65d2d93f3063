import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0

// The network statistics of the selected devices, and the life counters of
// the motors among them, read from each device; with a reset of the
// statistics. The values shown are the device's runtime record.
Pane {
    id: view
    property ObjectQueryModel devices
    property var jobs
    readonly property var selection: devices ? devices.selection : null
    property alias rows: rowModel
    property int busy: 0

    readonly property var statFields: ["frameSent", "frameReceived", "frameSeen", "busyCount", "maxRetryCount",
        "maxSlot", "supervisionFailure", "txFailures", "collisions", "rxDataError", "unknownMessage",
        "msgLengthError", "rxFifoFull", "txFifoFull", "crcError", "bundleSizeError"]
    readonly property var motorFields: ["totalMoveCount", "totalRevCount", "thermalCount", "postThermalMove",
        "obstacleCount", "postObstacleMove", "powerCount", "resetCount", "encoderErrCount"]

    // Reads the statistics (and the motors' counters) of every selected
    // device; the number of devices.
    function read() {
        return runOnSelection(function(row) {
            rowModel.run(jobs, row, "GetNetworkStatsJob", {}, done)
            if (rowModel.get(row).motor)
                rowModel.run(jobs, row, "GetMotorDiagnosticJob", {}, done)
        })
    }
    // Clears the statistics of every selected device (`stats`: a
    // SetNetworkStatsJob.Stats value) and shows them read back.
    function reset(stats) {
        return runOnSelection(function(row) {
            rowModel.run(jobs, row, "SetNetworkStatsJob", { stats: stats === undefined ? SetNetworkStatsJob.All : stats }, done)
        })
    }
    function runOnSelection(start) {
        rowModel.fill(selection, {})
        for (var row = 0; row < rowModel.count; ++row)
            start(row)
        done()
        return rowModel.count
    }
    function done() { busy = rowModel.busyCount() }
    // The counters of `record` (a runtime map) named by `fields`, as one line.
    function line(record, fields) {
        var out = []
        for (var i = 0; i < fields.length; ++i)
            out.push(fields[i] + " " + (record[fields[i]] === undefined || record[fields[i]] === null ? "\u2013" : record[fields[i]]))
        return out.join(", ")
    }

    SelectionRows { id: rowModel }
    AskFirst { id: askFirst }

    ColumnLayout {
        anchors.fill: parent
        RowLayout {
            Label { text: qsTr("%1 devices selected").arg(view.selection ? view.selection.rowCount : 0) }
            Button {
                objectName: "readDiagnostics"
                text: qsTr("Read")
                enabled: view.busy === 0
                onClicked: view.read()
            }
            ComboBox {
                id: resetWhat
                Layout.preferredWidth: 200
                model: [qsTr("Traffic counters"), qsTr("Error counters"), qsTr("All counters")]
                currentIndex: 2
            }
            Button {
                objectName: "resetStatistics"
                text: qsTr("Reset")
                enabled: view.busy === 0
                onClicked: askFirst.ask(qsTr("Reset the %1 of %2 devices?").arg(resetWhat.currentText)
                                        .arg(view.selection ? view.selection.rowCount : 0),
                                        function() { view.reset(resetWhat.currentIndex) })
            }
            BusyIndicator { running: view.busy > 0; implicitHeight: 32; implicitWidth: 32 }
        }
        ListView {
            objectName: "diagnosticRows"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: 6
            model: rowModel
            delegate: Column {
                id: entry
                width: ListView.view.width
                // The device, held while the row shows it.
                property var shared: ObjectFactory.objectQml(entry, model.uuid)
                readonly property alias counters: statsLine.text
                Component.onDestruction: if (shared) shared.destroy()
                DeviceRecords { id: records; device: entry.shared ? entry.shared.data : null }
                Label { text: model.name; font.bold: true }
                Label {
                    id: statsLine
                    objectName: "statistics"
                    width: parent.width
                    wrapMode: Text.Wrap
                    text: view.line(records.runtime, view.statFields)
                }
                Label {
                    objectName: "motorCounters"
                    visible: model.motor
                    width: parent.width
                    wrapMode: Text.Wrap
                    text: view.line(records.runtime, view.motorFields)
                }
                Label { visible: model.error !== ""; text: model.error; color: "firebrick" }
            }
        }
    }
}
