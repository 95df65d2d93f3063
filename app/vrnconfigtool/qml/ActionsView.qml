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
    // The last group job and its results, one entry per device.
    property var groupJob: null
    readonly property var results: groupJob && groupJob.state >= Job.Running ? groupJob.result : null
    readonly property int pending: groupJob && groupJob.state !== Job.Finished && groupJob.state !== Job.Idle ? 1 : 0
    property int doneCount: 0
    property int failedCount: 0

    // What can be run on a selection: the job, its parameters, and whether
    // it needs a motor.
    readonly property var actions: [
        { title: qsTr("Read label"), job: "GetLabelJob" },
        { title: qsTr("Read groups"), job: "GetGroupsJob" },
        { title: qsTr("Read firmware version"), job: "GetFwVersionJob" },
        { title: qsTr("Wink"), job: "VisualFeedbackJob", motor: true },
        { title: qsTr("Move up"), job: "MotorControlJob", props: { command: 1 }, motor: true, changes: true },
        { title: qsTr("Move down"), job: "MotorControlJob", props: { command: 0 }, motor: true, changes: true },
        { title: qsTr("Stop"), job: "MotorControlJob", props: { command: 255 }, motor: true },
        { title: qsTr("Read position"), job: "GetPositionJob", motor: true },
        { title: qsTr("Read end limits"), job: "GetEndLimitsJob", motor: true }
    ]

    // Queues action number `index` on the group worker of the selected
    // devices; the group runs it device by device. The number of devices.
    function runOnSelection(index) {
        var action = actions[index]
        actionBox.currentIndex = index
        var group = selection ? GroupFactory.selectionWorkerQml(selection) : null
        if (!group)
            return 0
        if (groupJob)
            groupJob.destroy()
        doneCount = 0
        failedCount = 0
        groupJob = jobs.kinds[action.job].createObject(view, action.props || {})
        group.enqueue(groupJob, 5)
        return group.count
    }
    function recount() {
        doneCount = results ? results.okCount() : 0
        failedCount = results ? results.failedCount() : 0
    }
    function deviceText(uuid) {
        var shared = ObjectFactory.objectQml(view, uuid)
        var text = shared && shared.data ? Format.deviceText(shared.data) : String(uuid)
        if (shared)
            shared.destroy()
        return text
    }

    Connections {
        target: view.results
        function onDataChanged() { view.recount() }
        function onRowsInserted() { view.recount() }
    }
    Connections {
        target: view.groupJob
        function onFinished() { view.recount() }
    }


    AskFirst { id: askFirst }

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
                enabled: view.pending === 0
                onClicked: {
                    var index = actionBox.currentIndex
                    var count = view.selection ? view.selection.rowCount : 0
                    if (view.actions[index].changes && count > 1)
                        askFirst.ask(qsTr("%1 on %2 devices?").arg(view.actions[index].title).arg(count),
                                     function() { view.runOnSelection(index) })
                    else
                        view.runOnSelection(index)
                }
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
                readonly property bool failed: model.state === Job.Finished && model.error !== Job.NoError
                Label { width: 160; text: view.deviceText(model.uuid) }
                Label {
                    width: 100
                    text: failed ? qsTr("failed") : [qsTr("idle"), qsTr("queued"), qsTr("running"), qsTr("done")][model.state]
                    color: failed ? "firebrick" : palette.text
                }
                Label { text: model.errorString }
            }
        }
    }
}
