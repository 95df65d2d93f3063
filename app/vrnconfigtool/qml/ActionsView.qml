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
        { title: qsTr("Read end limits"), job: "GetEndLimitsJob", motor: true },
        { title: qsTr("Read intermediate positions"), job: "GetMotorIpsJob", motor: true },
        { title: qsTr("Read direction"), job: "GetDirectionJob", motor: true },
        { title: qsTr("Read speeds"), job: "GetSpeedJob", motor: true },
        { title: qsTr("Read ramps"), job: "GetRampJob", motor: true }
    ]
    // The action of the results shown.
    property var lastAction: actions[0]

    // Picks the action that runs job `name` (the context menu of the list).
    function choose(name) {
        for (var i = 0; i < actions.length; ++i)
            if (actions[i].job === name) { actionBox.currentIndex = i; return }
    }

    // Selected devices the last action was not sent to, their rows being
    // invalid: { name, why } each.
    property var skipped: []

    // Queues action number `index` on the group worker of the selected
    // devices; the group runs it device by device. Devices whose rows are
    // invalid are left out first and listed (`skipped`). The number of
    // devices it runs on.
    function runOnSelection(index) {
        var action = actions[index]
        actionBox.currentIndex = index
        lastAction = action
        var sorted = jobs.selectionGroup(action.job, selection)
        var left = []
        for (var i = 0; i < sorted.refused.length; ++i)
            left.push({ name: deviceText(sorted.refused[i].uuid), why: sorted.refused[i].why })
        skipped = left
        var group = sorted.group
        if (groupJob)
            groupJob.destroy()
        groupJob = null
        doneCount = 0
        failedCount = 0
        if (!group)
            return 0
        groupJob = jobs.kinds[action.job].createObject(view, action.props || {})
        group.enqueue(groupJob, 5)
        return group.count
    }
    // The devices left out, in words: the first few, then how many more.
    function skippedText() {
        var lines = [qsTr("Not sent to %1 of the selected devices, their rows are invalid (forget them and discover the devices again):")
                     .arg(skipped.length)]
        for (var i = 0; i < skipped.length && i < 5; ++i)
            lines.push(qsTr("%1: %2").arg(skipped[i].name).arg(skipped[i].why))
        if (skipped.length > 5)
            lines.push(qsTr("and %1 more").arg(skipped.length - 5))
        return lines.join("\n")
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
            Label { text: qsTr("Devices selected: %1").arg(view.selection ? view.selection.rowCount : 0) }
            ComboBox {
                id: actionBox
                Layout.preferredWidth: fm.averageCharacterWidth * 34
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
            objectName: "actionSummary"
            text: view.groupJob ? qsTr("%1: %2 done, %3 failed").arg(view.lastAction.title).arg(view.doneCount).arg(view.failedCount)
                                  + (view.pending ? qsTr(", running") : "")
                                : view.skipped.length > 0 ? qsTr("%1: sent to no device").arg(view.lastAction.title)
                                : qsTr("Choose an action and run it on the selected devices.")
        }
        Label {
            objectName: "actionSkipped"
            Layout.fillWidth: true
            visible: text !== ""
            text: view.skipped.length > 0 ? view.skippedText() : ""
            color: palette.window.hslLightness < 0.5 ? "#ff7b72" : "firebrick"
            wrapMode: Text.Wrap
        }
        ProgressBar {
            Layout.fillWidth: true
            visible: view.pending > 0
            from: 0
            to: Math.max(1, view.results ? view.results.count : 1)
            value: view.doneCount + view.failedCount
        }
        ListView {
            objectName: "actionResults"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: results
            ScrollBar.vertical: ScrollBar {}
            header: Row {
                Label { width: fm.averageCharacterWidth * 30; text: qsTr("Device"); font.bold: true }
                Label { width: fm.averageCharacterWidth * 12; text: qsTr("State"); font.bold: true }
                Label { text: qsTr("Result"); font.bold: true }
            }
            delegate: Row {
                id: resultRow
                readonly property bool failed: model.state === Job.Finished && model.error !== Job.NoError
                readonly property bool finished: model.state === Job.Finished
                property var shared: ObjectFactory.objectQml(resultRow, model.uuid)
                // A row stays one device's: its name is taken once (the
                // address announces no change a binding could follow).
                property string name: ""
                Component.onCompleted: name = shared && shared.data ? Format.deviceText(shared.data) : String(model.uuid)
                Component.onDestruction: if (shared) shared.destroy()
                DeviceRecords { id: rowRecords; device: resultRow.shared ? resultRow.shared.data : null }
                Label { width: fm.averageCharacterWidth * 30; text: resultRow.name; elide: Text.ElideRight }
                Label {
                    width: fm.averageCharacterWidth * 12
                    text: failed ? qsTr("failed") : [qsTr("waiting"), qsTr("queued"), qsTr("running"), qsTr("done")][model.state]
                    color: failed ? "firebrick" : palette.text
                }
                Label {
                    id: outcomeLabel
                    objectName: "actionOutcome"
                    width: resultRow.ListView.view ? resultRow.ListView.view.width - fm.averageCharacterWidth * 42 : 300
                    elide: Text.ElideRight
                    text: !resultRow.finished ? "" : Format.outcome(view.lastAction.job, !resultRow.failed, model.errorString,
                                                                    Format.known(rowRecords.proxy), Format.known(rowRecords.runtime),
                                                                    view.lastAction.title)
                    color: failed ? "firebrick" : palette.text
                    MouseArea { id: outcomeHover; anchors.fill: parent; hoverEnabled: true }
                    ToolTip.visible: outcomeHover.containsMouse && outcomeLabel.truncated
                    ToolTip.text: outcomeLabel.text
                }
            }
        }
    }
    FontMetrics { id: fm }
}
