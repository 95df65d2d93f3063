import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0
import "Format.js" as Format

// One job run on every selected device, each device's outcome in a table.
Pane {
    id: view
    property ObjectQueryModel devices
    property var jobs
    readonly property var selection: devices ? devices.selection : null
    property alias results: results
    property int pending: 0
    property int doneCount: 0
    property int failedCount: 0

    // What can be run on a selection: the job, its parameters, and whether
    // it needs a motor.
    readonly property var actions: [
        { title: qsTr("Read label"), job: "GetLabelJob" },
        { title: qsTr("Read groups"), job: "GetGroupsJob" },
        { title: qsTr("Read firmware version"), job: "GetFwVersionJob" },
        { title: qsTr("Wink"), job: "VisualFeedbackJob", motor: true },
        { title: qsTr("Move up"), job: "MotorControlJob", props: { command: 1 }, motor: true },
        { title: qsTr("Move down"), job: "MotorControlJob", props: { command: 0 }, motor: true },
        { title: qsTr("Stop"), job: "MotorControlJob", props: { command: 255 }, motor: true },
        { title: qsTr("Read position"), job: "GetPositionJob", motor: true },
        { title: qsTr("Read end limits"), job: "GetEndLimitsJob", motor: true }
    ]

    // Queues action number `index` on each selected device, one result row per device.
    function runOnSelection(index) {
        var action = actions[index]
        actionBox.currentIndex = index
        results.clear()
        doneCount = 0
        failedCount = 0
        var count = selection ? selection.rowCount : 0
        for (var i = 0; i < count; ++i) {
            var uuid = selection.data(i)
            var shared = ObjectFactory.objectQml(view, uuid)
            var device = shared && shared.data
                ? Format.hex(shared.data.address & 0xFFFFFF, 6) + " " + (Format.typeNames[shared.data.type] || "") : String(uuid)
            if (shared)
                shared.destroy()
            results.append({ uuid: uuid, device: device, state: qsTr("queued"), error: "" })
        }
        for (var j = 0; j < count; ++j)
            runOne(action, j)
        return count
    }
    function runOne(action, row) {
        var uuid = results.get(row).uuid
        pending += 1
        jobs.run(uuid, action.job, action.props, function(ok, text) {
            pending -= 1
            if (ok) doneCount += 1; else failedCount += 1
            results.setProperty(row, "state", ok ? qsTr("done") : qsTr("failed"))
            results.setProperty(row, "error", ok ? "" : text)
        }, 5)
    }

    ListModel { id: results }

    ColumnLayout {
        anchors.fill: parent
        RowLayout {
            Label { text: qsTr("%1 devices selected").arg(view.selection ? view.selection.rowCount : 0) }
            ComboBox {
                id: actionBox
                Layout.preferredWidth: 240
                model: view.actions
                textRole: "title"
            }
            Button {
                objectName: "runAction"
                text: qsTr("Run")
                enabled: view.selection && view.selection.rowCount > 0 && view.pending === 0
                onClicked: view.runOnSelection(actionBox.currentIndex)
            }
            BusyIndicator { running: view.pending > 0; implicitHeight: 32; implicitWidth: 32 }
        }
        Label {
            text: qsTr("%1 done, %2 failed, %3 running").arg(view.doneCount).arg(view.failedCount).arg(view.pending)
        }
        ListView {
            objectName: "actionResults"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: results
            header: Row {
                Label { width: 160; text: qsTr("Device"); font.bold: true }
                Label { width: 100; text: qsTr("Result"); font.bold: true }
                Label { text: qsTr("Error"); font.bold: true }
            }
            delegate: Row {
                Label { width: 160; text: model.device }
                Label { width: 100; text: model.state; color: model.state === qsTr("failed") ? "firebrick" : palette.text }
                Label { text: model.error }
            }
        }
    }
}
