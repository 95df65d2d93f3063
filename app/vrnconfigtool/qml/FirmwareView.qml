import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0
import "Format.js" as Format

// The firmware catalogue (the packages of the folder "firmwarePath"), a
// check of the selected devices against it, and an update of them: asked
// first, each device's progress with the time left, and a summary at the
// end (updated, skipped, failed, recovered). Failures show the library's
// texts in full.
Pane {
    id: view
    property ObjectQueryModel devices
    property var jobs
    readonly property var selection: devices ? devices.selection : null
    property alias catalogue: loader
    property alias rows: rowModel
    property int busy: 0
    // Send the package also to devices that run its version, or an older one.
    property alias force: forceBox.checked
    property alias allowDowngrade: downgradeBox.checked
    // The outcome of the last update, as one line.
    property string summary: ""
    property bool updating: false
    property bool updatingDirect: false
    property double startedAt: 0

    // Checks every selected device; the number of devices.
    function check() {
        summary = ""
        return runOnSelection(function(row) {
            rowModel.run(jobs, row, "CheckFwJob", {}, function(ok, result) {
                if (ok)
                    rowModel.setProperty(row, "status", statusText(result))
                done()
            })
        })
    }
    // Asks before an update of every selected device.
    function askUpdate(direct) {
        confirm.direct = direct
        confirm.open()
    }
    // Updates every selected device with the newest package that fits it
    // (`direct`: through its bootloader); the number of devices.
    function update(direct) {
        summary = ""
        updating = true
        updatingDirect = direct
        startedAt = Date.now()
        var props = { force: view.force, allowDowngrade: view.allowDowngrade }
        return runOnSelection(function(row) {
            rowModel.run(jobs, row, direct ? "DirectUpdateFwJob" : "UpdateFwJob", props, function(ok, result) {
                if (ok)
                    outcome(row, result, direct)
                done()
            }, function(job) {
                var firstAt = 0
                var firstBlocks = 0
                job.progress.connect(function(blocks, total) {
                    if (row >= rowModel.count)
                        return
                    var now = Date.now()
                    if (firstAt === 0 || blocks < firstBlocks) {
                        firstAt = now
                        firstBlocks = blocks
                    }
                    var rate = (blocks - firstBlocks) / Math.max(1, now - firstAt) // blocks a millisecond
                    rowModel.setProperty(row, "blocks", blocks)
                    rowModel.setProperty(row, "total", total)
                    rowModel.setProperty(row, "status", blocks >= total ? qsTr("checking the image")
                        : rate > 0 ? qsTr("%1/%2 blocks, %3 s left").arg(blocks).arg(total)
                                         .arg(Math.ceil((total - blocks) / rate / 1000))
                                   : qsTr("%1/%2 blocks").arg(blocks).arg(total))
                })
            })
        })
    }
    function outcome(row, result, direct) {
        if (result.skipped) {
            rowModel.setProperty(row, "outcome", "skipped")
            rowModel.setProperty(row, "status", qsTr("skipped: %1").arg(result.reason))
            return
        }
        rowModel.setProperty(row, "outcome", direct ? "recovered" : "updated")
        rowModel.setProperty(row, "status", qsTr("%1 %2 \u2192 %3 in %4 s")
            .arg(direct ? qsTr("recovered") : qsTr("updated"))
            .arg(result.previous ? result.previous : qsTr("bootloader")).arg(result.version)
            .arg((result.ms / 1000).toFixed(1)))
    }
    function runOnSelection(start) {
        rowModel.fill(selection, { status: "", blocks: 0, total: 0, outcome: "" })
        for (var row = 0; row < rowModel.count; ++row)
            start(row)
        done()
        return rowModel.count
    }
    function done() {
        busy = rowModel.busyCount()
        if (busy > 0 || !updating)
            return
        updating = false
        var counts = { updated: 0, skipped: 0, failed: 0, recovered: 0 }
        for (var i = 0; i < rowModel.count; ++i) {
            var r = rowModel.get(i)
            if (r.error !== "")
                counts.failed += 1
            else if (r.outcome !== "")
                counts[r.outcome] += 1
        }
        summary = qsTr("%1 updated, %2 skipped, %3 failed, %4 recovered in %5 s")
            .arg(counts.updated).arg(counts.skipped).arg(counts.failed).arg(counts.recovered)
            .arg(((Date.now() - startedAt) / 1000).toFixed(1))
    }
    function statusText(result) {
        if (result.status === "updateAvailable")
            return qsTr("%1, %2 available").arg(result.version).arg(result.available)
        if (result.status === "upToDate")
            return qsTr("%1, up to date").arg(result.version)
        if (result.status === "deviceNewer")
            return qsTr("%1, newer than every package (newest %2)").arg(result.version).arg(result.available)
        return qsTr("%1, no package fits").arg(result.version)
    }

    FirmwareLoader { id: loader }
    FontMetrics { id: fm }
    SelectionRows { id: rowModel }

    Dialog {
        id: confirm
        objectName: "confirmUpdate"
        property bool direct: false
        anchors.centerIn: parent
        modal: true
        title: direct ? qsTr("Update through the bootloader") : qsTr("Update firmware")
        standardButtons: Dialog.Ok | Dialog.Cancel
        // Only while open (see AskFirst.qml).
        Label {
            text: !confirm.visible ? ""
                  : qsTr("Send the newest package that fits to %1 device(s), one after another?").arg(view.selection ? view.selection.rowCount : 0)
                  + (view.force ? "\n" + qsTr("Devices that already run its version get it again.") : "")
                  + (view.allowDowngrade ? "\n" + qsTr("Devices with a newer version get the older one.") : "")
        }
        onAccepted: view.update(direct)
    }

    RowLayout {
        anchors.fill: parent
        // The catalogue takes 45 % of the width, the devices the rest: both
        // columns fill, in proportion to their preferred widths. (A width
        // taken from the view's own made the hidden view's implicit width
        // chase itself: a polish loop.)
        ColumnLayout {
            Layout.fillWidth: true
            Layout.preferredWidth: 45
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
            Layout.preferredWidth: 55
            Layout.fillHeight: true
            RowLayout {
                Label { text: qsTr("%1 devices selected").arg(view.selection ? view.selection.rowCount : 0) }
                Button { objectName: "checkFirmware"; text: qsTr("Check"); enabled: view.busy === 0; onClicked: view.check() }
                Button { objectName: "updateFirmware"; text: qsTr("Update\u2026"); enabled: view.busy === 0; onClicked: view.askUpdate(false) }
                Button { text: qsTr("Update through bootloader\u2026"); enabled: view.busy === 0; onClicked: view.askUpdate(true) }
                BusyIndicator { running: view.busy > 0; implicitHeight: 32; implicitWidth: 32 }
            }
            RowLayout {
                CheckBox { id: forceBox; text: qsTr("Also devices that run the package's version") }
                CheckBox { id: downgradeBox; text: qsTr("Allow an older version") }
            }
            Label {
                objectName: "firmwareSummary"
                visible: text !== ""
                text: view.summary
                font.bold: true
            }
            ListView {
                objectName: "firmwareRows"
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                model: rowModel
                delegate: RowLayout {
                    width: ListView.view.width
                    Label { Layout.preferredWidth: fm.averageCharacterWidth * 26; text: model.name; elide: Text.ElideRight }
                    ProgressBar {
                        Layout.preferredWidth: 120
                        visible: model.total > 0
                        value: model.total > 0 ? model.blocks / model.total : 0
                    }
                    Label {
                        id: statusLabel
                        objectName: "firmwareStatus"
                        Layout.fillWidth: true
                        text: model.error !== "" ? model.error : model.status
                        color: model.error !== "" ? "firebrick" : palette.text
                        wrapMode: Text.Wrap
                        maximumLineCount: 3
                        elide: Text.ElideRight
                        // A long text (a failure naming the way to recover
                        // the device) is shown whole on hover.
                        HoverHandler { id: hover }
                        ToolTip.visible: statusLabel.truncated && hover.hovered
                        ToolTip.text: statusLabel.text
                    }
                }
            }
        }
    }
}
