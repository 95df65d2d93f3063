import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0
import "Format.js" as Format

// The firmware catalogue (the packages of the folder "firmwarePath"), a
// check of the selected devices against it, and an update of them with
// each device's progress. Failures show the library's texts.
Pane {
    id: view
    property ObjectQueryModel devices
    property var jobs
    readonly property var selection: devices ? devices.selection : null
    property alias catalogue: loader
    property alias rows: rowModel
    property int busy: 0

    // Checks every selected device; the number of devices.
    function check() {
        return runOnSelection(function(row) {
            rowModel.run(jobs, row, "CheckFwJob", {}, function(ok, result) {
                if (ok)
                    rowModel.setProperty(row, "status", statusText(result))
                done()
            })
        })
    }
    // Updates every selected device with the newest package that fits it
    // (`direct`: through its bootloader).
    function update(direct) {
        return runOnSelection(function(row) {
            rowModel.run(jobs, row, direct ? "DirectUpdateFwJob" : "UpdateFwJob", {}, function(ok, result) {
                if (ok)
                    rowModel.setProperty(row, "status", qsTr("updated to %1").arg(result.version))
                done()
            }, function(job) {
                job.progress.connect(function(blocks, total) {
                    if (row < rowModel.count) {
                        rowModel.setProperty(row, "blocks", blocks)
                        rowModel.setProperty(row, "total", total)
                    }
                })
            })
        })
    }
    function runOnSelection(start) {
        rowModel.fill(selection, { status: "", blocks: 0, total: 0 })
        for (var row = 0; row < rowModel.count; ++row)
            start(row)
        done()
        return rowModel.count
    }
    function done() { busy = rowModel.busyCount() }
    function statusText(result) {
        if (result.status === "updateAvailable")
            return qsTr("%1, %2 available").arg(result.version).arg(result.available)
        if (result.status === "upToDate")
            return qsTr("%1, up to date").arg(result.version)
        return qsTr("%1, no package fits").arg(result.version)
    }

    FirmwareLoader { id: loader }
    SelectionRows { id: rowModel }

    RowLayout {
        anchors.fill: parent
        ColumnLayout {
            Layout.preferredWidth: view.availableWidth * 0.45
            Layout.fillHeight: true
            RowLayout {
                Label { text: qsTr("Packages in %1").arg(loader.path || qsTr("(no folder set)")); elide: Text.ElideMiddle; Layout.fillWidth: true }
                Button { text: qsTr("Reload"); onClicked: loader.reload() }
            }
            ListView {
                objectName: "catalogue"
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                model: loader
                header: Row {
                    Label { width: 160; text: qsTr("File"); font.bold: true }
                    Label { width: 80; text: qsTr("Version"); font.bold: true }
                    Label { text: qsTr("For"); font.bold: true }
                }
                delegate: Row {
                    Label { width: 160; text: model.fileName; elide: Text.ElideRight }
                    Label { width: 80; text: model.version }
                    Label {
                        text: !model.readable || !model.verified ? model.error || qsTr("signature does not verify")
                                                                 : model.kinds.map(Format.nodeTypeWord).join(", ")
                        color: model.readable && model.verified ? palette.text : "firebrick"
                    }
                }
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            RowLayout {
                Label { text: qsTr("%1 devices selected").arg(view.selection ? view.selection.rowCount : 0) }
                Button { objectName: "checkFirmware"; text: qsTr("Check"); enabled: view.busy === 0; onClicked: view.check() }
                Button { objectName: "updateFirmware"; text: qsTr("Update"); enabled: view.busy === 0; onClicked: view.update(false) }
                Button { text: qsTr("Update through bootloader"); enabled: view.busy === 0; onClicked: view.update(true) }
                BusyIndicator { running: view.busy > 0; implicitHeight: 32; implicitWidth: 32 }
            }
            ListView {
                objectName: "firmwareRows"
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                model: rowModel
                delegate: RowLayout {
                    width: ListView.view.width
                    Label { Layout.preferredWidth: 160; text: model.name }
                    ProgressBar {
                        Layout.preferredWidth: 120
                        visible: model.total > 0
                        value: model.total > 0 ? model.blocks / model.total : 0
                    }
                    Label {
                        objectName: "firmwareStatus"
                        Layout.fillWidth: true
                        text: model.error !== "" ? model.error : model.status
                        color: model.error !== "" ? "firebrick" : palette.text
                        elide: Text.ElideRight
                    }
                }
            }
        }
    }
}
