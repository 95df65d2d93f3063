import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0
import "Format.js" as Format

// The panel of the selection: what the shown device has (read from it)
// beside what the user wants, and one action that writes the differences.
// With several devices selected, the fields they have in common are edited
// together and written to all of them through the group worker.
ScrollView {
    id: panel
    property var jobs
    property var uuid
    property int selectedCount: 0
    property int commonType: 0
    // The selection, for writes to several devices.
    property var selection: null
    readonly property bool several: selectedCount > 1
    // A setting tool answers no node request: nothing is read from it or written to it.
    readonly property bool isNode: uuid !== undefined && ObjectFactory.isNetworkNode(uuid)
    readonly property bool isMotor: Format.isMotorType(commonType)
    readonly property bool isDCMotor: Format.isDCMotorType(commonType)
    readonly property var proxy: Format.known(records.proxy)
    readonly property var runtime: Format.known(records.runtime)
    property var shared: null
    property string nodeText: ""
    // Jobs of this panel, newest first: text, ok, running.
    property alias log: logModel
    property bool watching: false
    property int stableReads: 0
    // Jobs started for the device shown and how many of them ended.
    property int started: 0
    property int ended: 0
    property var groupJobs: []

    readonly property var groupsCheck: Format.checkGroups(groupsEdit.text)
    readonly property string labelProblem: Format.labelProblem(labelEdit.text)
    readonly property bool invalid: labelProblem !== "" || groupsCheck.problem !== ""
    readonly property bool nothingRead: Object.keys(proxy).length === 0
    readonly property string syncText: started > ended ? qsTr("Reading from the device\u2026")
                                       : nothingRead ? qsTr("Not read yet")
                                       : pendingJobs.length > 0 ? qsTr("Changes not written (%1)").arg(pendingJobs.length)
                                       : qsTr("In step with the device")

    // A field is wanted when the user changed it: one device compares with
    // what it has, several take every field the user touched.
    function wanted(key, differs) { return several ? touched[key] === true : differs }
    readonly property var pendingJobs: {
        var out = []
        var t = touchCount  // re-evaluated when a field is touched
        if (!several && proxy.label !== undefined && labelEdit.text !== String(proxy.label))
            out.push(["SetLabelJob", { label: labelEdit.text }])
        if (proxy.groups !== undefined || several) {
            var typed = groupsCheck.groups.map(function(g) { return Format.hex(g, 6) }).join()
            var has = (proxy.groups || []).filter(function(g) { return g !== 0 }).map(function(g) { return Format.hex(g, 6) }).join()
            if (wanted("groups", typed !== has))
                out.push(["SetGroupsJob", { groups: groupsCheck.groups }])
        }
        if (isMotor && proxy.rotDirection !== undefined && wanted("rotDirection", directionEdit.currentIndex !== proxy.rotDirection))
            out.push(["SetDirectionJob", { direction: directionEdit.currentIndex }])
        if (isMotor && proxy.upEndLimit !== undefined && wanted("upEndLimit", upLimitEdit.value !== proxy.upEndLimit))
            out.push(["SetEndLimitsJob", { command: 1, limit: 1, delta: upLimitEdit.value }])
        if (isMotor && proxy.downEndLimit !== undefined && wanted("downEndLimit", downLimitEdit.value !== proxy.downEndLimit))
            out.push(["SetEndLimitsJob", { command: 1, limit: 0, delta: downLimitEdit.value }])
        if (isDCMotor && proxy.upRollingSpeed !== undefined
                && wanted("speeds", upSpeedEdit.value !== proxy.upRollingSpeed || downSpeedEdit.value !== proxy.downRollingSpeed
                          || slowSpeedEdit.value !== proxy.slowRollingSpeed))
            out.push(["SetSpeedJob", { upSpeed: upSpeedEdit.value, downSpeed: downSpeedEdit.value,
                                       slowSpeed: slowSpeedEdit.value }])
        if (isDCMotor && proxy.softStartValue !== undefined
                && wanted("ramps", softStartEdit.value !== proxy.softStartValue || softStopEdit.value !== proxy.softStopValue
                          || softStartOn.checked !== !!proxy.softStartStatus || softStopOn.checked !== !!proxy.softStopStatus))
            out.push(["SetRampJob", { softStartStatus: softStartOn.checked ? 1 : 0, softStartValue: softStartEdit.value,
                                      softStopStatus: softStopOn.checked ? 1 : 0, softStopValue: softStopEdit.value,
                                      ramps: 1 }])
        return out
    }

    property int nextEntry: 0
    // Adds a running entry to the log; the function that ends it.
    function begin(title) {
        var id = ++nextEntry
        logModel.insert(0, { entry: id, text: qsTr("%1 \u2026").arg(title), ok: true, running: true })
        if (logModel.count > 50)
            logModel.remove(50, logModel.count - 50)
        started += 1
        var forUuid = uuid
        return function(text, ok) {
            if (forUuid !== panel.uuid)
                return
            ended += 1
            for (var i = 0; i < logModel.count; ++i) {
                if (logModel.get(i).entry === id) {
                    logModel.set(i, { entry: id, text: text, ok: ok, running: false })
                    return
                }
            }
        }
    }
    function note(name, ok, text) {
        logModel.insert(0, { entry: ++nextEntry, text: Format.outcome(name, ok, text, proxy, runtime), ok: ok, running: false })
    }
    function run(name, props, then, title) {
        if (uuid === undefined || !jobs)
            return false
        var end = begin(title || Format.jobTitle(name))
        return jobs.run(uuid, name, props, function(ok, text, result) {
            // The records of the device changed before the job ended.
            end(Format.outcome(name, ok, text, Format.known(records.proxy), Format.known(records.runtime), title), ok)
            if (then)
                then(ok, text, result)
        })
    }
    // Reads everything the panel shows from the device.
    function readAll() {
        // Asked here, not through isNode, which may not yet follow a uuid just set.
        if (uuid === undefined || !ObjectFactory.isNetworkNode(uuid))
            return
        var names = ["GetLabelJob", "GetGroupsJob", "GetFwVersionJob"]
        if (isMotor)
            names = names.concat(["GetDirectionJob", "GetEndLimitsJob", "GetPositionJob", "GetMotorIpsJob"])
        if (isDCMotor)
            names = names.concat(["GetSpeedJob", "GetRampJob"])
        for (var i = 0; i < names.length; ++i)
            run(names[i])
    }
    // A write changes the local record only: what the device then has is
    // read back (end limits and positions read themselves back).
    readonly property var readBack: ({ SetLabelJob: "GetLabelJob", SetGroupsJob: "GetGroupsJob",
                                       SetDirectionJob: "GetDirectionJob", SetSpeedJob: "GetSpeedJob",
                                       SetRampJob: "GetRampJob" })
    function writePending() {
        var todo = pendingJobs
        if (invalid)
            return 0
        if (several)
            return writeToSelection(todo)
        for (var i = 0; i < todo.length; ++i) {
            var name = todo[i][0]
            run(name, todo[i][1], function(name) {
                return function(ok) { if (ok && readBack[name]) run(readBack[name]) }
            }(name))
        }
        return todo.length
    }
    // Each change as one group job over the selection: the group worker
    // runs it device by device and keeps each device's outcome.
    // Rows no device can have are left out (each said in the messages).
    function writeToSelection(todo) {
        var group = null
        for (var i = 0; i < todo.length; ++i) {
            var sorted = jobs.selectionGroup(todo[i][0], selection)
            if (sorted.refused.length > 0)
                note(todo[i][0], false, qsTr("left out, rows invalid: %1").arg(sorted.refused.length))
            group = sorted.group
        }
        if (!group)
            return 0
        var devices = group.count
        for (i = 0; i < todo.length; ++i) {
            var job = jobs.kinds[todo[i][0]].createObject(panel, todo[i][1])
            var end = begin(qsTr("%1 on %2 devices").arg(Format.jobTitle(todo[i][0])).arg(devices))
            job.finished.connect(function(job, end, name) {
                return function() {
                    var results = job.result
                    var ok = results ? results.okCount() : 0
                    var failed = results ? results.failedCount() : devices
                    end(qsTr("%1: %2 done, %3 failed").arg(Format.jobTitle(name)).arg(ok).arg(failed), failed === 0)
                    job.destroy()
                }
            }(job, end, todo[i][0]))
            group.enqueue(job, 5)
        }
        touched = {}
        touchCount += 1
        return todo.length
    }
    // Editors follow the device's values until the user changes them
    // (`touched`), so that reads arriving later never undo an edit.
    property var touched: ({})
    property int touchCount: 0
    function touch(key) { touched[key] = true; touchCount += 1 }
    function seedEditors() {
        var setters = {
            label: function(v) { labelEdit.text = String(v) },
            groups: function(v) { groupsEdit.text = Format.groupsText(v) },
            rotDirection: function(v) { directionEdit.currentIndex = v },
            upEndLimit: function(v) { upLimitEdit.value = v },
            downEndLimit: function(v) { downLimitEdit.value = v },
            upRollingSpeed: function(v) { if (!touched.speeds) upSpeedEdit.value = v },
            downRollingSpeed: function(v) { if (!touched.speeds) downSpeedEdit.value = v },
            slowRollingSpeed: function(v) { if (!touched.speeds) slowSpeedEdit.value = v },
            softStartValue: function(v) { if (!touched.ramps) softStartEdit.value = v },
            softStopValue: function(v) { if (!touched.ramps) softStopEdit.value = v },
            softStartStatus: function(v) { if (!touched.ramps) softStartOn.checked = !!v },
            softStopStatus: function(v) { if (!touched.ramps) softStopOn.checked = !!v }
        }
        // records.proxy, not the binding on it: this runs as the records change.
        var known = Format.known(records.proxy)
        for (var key in setters) {
            var v = known[key]
            if (v !== undefined && !touched[key])
                setters[key](v)
        }
    }
    function resetEditors() {
        touched = {}
        touchCount += 1
        seedEditors()
    }
    // Moves, then reads the position until it stays the same a few times.
    function move(command, value) {
        var title = command === 1 ? qsTr("Move up") : command === 0 ? qsTr("Move down")
                  : command === 255 ? qsTr("Stop") : qsTr("Move to %1 %").arg(value)
        run("MotorControlJob", { command: command, value: value || 0 }, function(ok) {
            if (ok) {
                stableReads = 0
                watching = true
            }
        }, title)
    }

    // A new device: nothing of the last one stays on screen.
    onUuidChanged: {
        watching = false
        logModel.clear()
        started = 0
        ended = 0
        touched = {}
        touchCount += 1
        labelEdit.text = ""
        groupsEdit.text = ""
        if (shared)
            shared.destroy()
        shared = uuid !== undefined ? ObjectFactory.objectQml(panel, uuid) : null
        nodeText = shared && shared.data ? Format.deviceText(shared.data) : ""
        seedEditors()
        if (uuid !== undefined)
            readAll()
    }
    Connections {
        target: records
        function onRecordsChanged() { panel.seedEditors() }
    }

    background: Rectangle { color: panel.palette.window }

    DeviceRecords { id: records; device: panel.shared ? panel.shared.data : null }
    // The question is put when the write is asked for: a dialog whose text
    // followed every edit would size itself again at each keystroke.
    AskFirst { id: confirmWrite; anchors.centerIn: Overlay.overlay }
    ListModel { id: logModel }
    FontMetrics { id: fm }

    Timer {
        interval: 150
        repeat: true
        running: panel.watching
        property var last
        onTriggered: panel.jobs.run(panel.uuid, "GetPositionJob", undefined, function(ok, text, result) {
            var pos = panel.runtime.posPulse
            panel.stableReads = (ok && pos === last) ? panel.stableReads + 1 : 0
            last = pos
            if (!ok || panel.stableReads >= 3)
                panel.watching = false
        })
    }

    ColumnLayout {
        width: panel.availableWidth
        spacing: 8

        Label {
            visible: panel.uuid === undefined
            text: qsTr("Select a device in the list.")
        }
        Label {
            objectName: "panelTitle"
            visible: panel.uuid !== undefined
            font.bold: true
            font.pointSize: Qt.application.font.pointSize * 1.25
            text: !panel.several ? panel.nodeText
                  : panel.commonType > 0 ? qsTr("%1 devices selected (%2)").arg(panel.selectedCount).arg(Format.kindName(panel.commonType))
                  : qsTr("%1 devices selected, of different kinds").arg(panel.selectedCount)
        }
        Label {
            visible: panel.uuid !== undefined && panel.several
            text: qsTr("The changes you make are written to all of them; the values read are those of %1, the current row.").arg(panel.nodeText)
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        Label {
            objectName: "notANode"
            visible: panel.uuid !== undefined && !panel.isNode && !panel.several
            text: qsTr("A setting tool carries settings to the nodes and answers no request over the bus: there is nothing to read from it or write to it.")
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        Flow {
            visible: panel.uuid !== undefined && (panel.isNode || panel.several)
            Layout.fillWidth: true
            spacing: 6
            Label {
                objectName: "syncState"
                height: readAgain.height
                verticalAlignment: Text.AlignVCenter
                rightPadding: fm.averageCharacterWidth * 3
                text: panel.syncText
                color: panel.nothingRead || panel.started > panel.ended ? palette.text
                       : panel.pendingJobs.length > 0 ? "darkorange"
                       : palette.window.hslLightness < 0.5 ? "#7ee787" : "green"
            }
            Button {
                id: readAgain
                text: qsTr("Read again")
                ToolTip.visible: hovered
                ToolTip.text: qsTr("Reads every value shown from the device (F5)")
                onClicked: panel.readAll()
            }
            Button {
                objectName: "writePending"
                text: panel.several ? qsTr("Write changes to all (%1)").arg(panel.pendingJobs.length)
                                    : qsTr("Write changes (%1)").arg(panel.pendingJobs.length)
                enabled: panel.pendingJobs.length > 0 && !panel.invalid
                ToolTip.visible: hovered && panel.invalid
                ToolTip.text: qsTr("Correct the fields marked in red first")
                onClicked: {
                    if (panel.several) {
                        var titles = panel.pendingJobs.map(function(j) { return Format.jobTitle(j[0]) })
                        confirmWrite.ask(qsTr("Write to %1 devices?").arg(panel.selectedCount) + "\n\n" + titles.join("\n"),
                                         function() { panel.writePending() })
                    } else {
                        panel.writePending()
                    }
                }
            }
            Button {
                text: qsTr("Undo edits")
                enabled: panel.pendingJobs.length > 0 || panel.invalid
                onClicked: panel.resetEditors()
            }
        }
        ProgressBar {
            objectName: "jobProgress"
            visible: panel.uuid !== undefined && panel.started > panel.ended
            Layout.fillWidth: true
            from: 0
            to: Math.max(1, panel.started)
            value: panel.ended
        }

        GroupBox {
            title: qsTr("Node")
            visible: panel.uuid !== undefined && (panel.isNode || panel.several)
            Layout.fillWidth: true
            ColumnLayout {
                RowLayout {
                    Label { text: qsTr("Field"); font.bold: true; Layout.preferredWidth: fm.averageCharacterWidth * 20 }
                    Label { text: panel.several ? qsTr("Current row has") : qsTr("Device has"); font.bold: true; Layout.preferredWidth: fm.averageCharacterWidth * 21 }
                    Label { text: qsTr("Wanted"); font.bold: true }
                }
                FieldRow {
                    name: qsTr("Label")
                    deviceValue: panel.proxy.label
                    editable: deviceValue !== undefined && !panel.several
                    pending: !panel.several && panel.proxy.label !== undefined && labelEdit.text !== String(panel.proxy.label)
                    problem: panel.labelProblem
                    TextField {
                        id: labelEdit
                        objectName: "labelEdit"
                        width: parent.width
                        placeholderText: qsTr("no label")
                        color: panel.labelProblem !== "" ? "firebrick" : palette.text
                        onTextEdited: panel.touch("label")
                    }
                }
                FieldRow {
                    name: qsTr("Groups (hex)")
                    deviceValue: panel.proxy.groups === undefined ? undefined
                                 : (Format.groupsText(panel.proxy.groups) || qsTr("none"))
                    editable: deviceValue !== undefined || panel.several
                    pending: panel.pendingJobs.some(function(j) { return j[0] === "SetGroupsJob" })
                    problem: panel.groupsCheck.problem
                    TextField {
                        id: groupsEdit
                        objectName: "groupsEdit"
                        width: parent.width
                        placeholderText: qsTr("e.g. 1A, F0001")
                        color: panel.groupsCheck.problem !== "" ? "firebrick" : palette.text
                        onTextEdited: panel.touch("groups")
                    }
                }
                FieldRow { name: qsTr("Firmware"); deviceValue: panel.proxy.firmwareVersion; editable: false }
                FieldRow { name: qsTr("Serial number"); deviceValue: panel.proxy.serialNumber === undefined ? undefined : Format.serialText(panel.proxy.serialNumber); editable: false }
            }
        }

        GroupBox {
            title: qsTr("Motor")
            visible: panel.uuid !== undefined && panel.isMotor
            Layout.fillWidth: true
            ColumnLayout {
                width: parent.width
                FieldRow {
                    name: qsTr("Direction")
                    deviceValue: panel.proxy.rotDirection === undefined ? undefined
                                 : panel.proxy.rotDirection ? qsTr("reversed") : qsTr("standard")
                    pending: panel.pendingJobs.some(function(j) { return j[0] === "SetDirectionJob" })
                    ComboBox {
                        id: directionEdit
                        width: parent.width
                        model: [qsTr("standard"), qsTr("reversed")]
                        onActivated: panel.touch("rotDirection")
                    }
                }
                FieldRow {
                    name: qsTr("Up end limit")
                    deviceValue: panel.proxy.upEndLimit === undefined ? undefined : qsTr("%1 pulses").arg(panel.proxy.upEndLimit)
                    pending: panel.pendingJobs.some(function(j) { return j[0] === "SetEndLimitsJob" && j[1].limit === 1 })
                    SpinBox { id: upLimitEdit; width: parent.width; from: 0; to: 65535; editable: true; onValueModified: panel.touch("upEndLimit") }
                }
                FieldRow {
                    name: qsTr("Down end limit")
                    deviceValue: panel.proxy.downEndLimit === undefined ? undefined : qsTr("%1 pulses").arg(panel.proxy.downEndLimit)
                    pending: panel.pendingJobs.some(function(j) { return j[0] === "SetEndLimitsJob" && j[1].limit === 0 })
                    SpinBox { id: downLimitEdit; width: parent.width; from: 0; to: 65535; editable: true; onValueModified: panel.touch("downEndLimit") }
                }
                FieldRow {
                    name: qsTr("Position")
                    editable: true
                    deviceValue: panel.runtime.posPulse === undefined ? undefined
                                 : qsTr("%1 % (%2 pulses)").arg(panel.runtime.posPCent).arg(panel.runtime.posPulse)
                    Label { objectName: "positionLabel"; text: panel.watching ? qsTr("moving\u2026") : "" }
                }
                Flow {
                    Layout.fillWidth: true
                    spacing: 6
                    Button { text: qsTr("Up"); onClicked: panel.move(1) }
                    Button { text: qsTr("Down"); onClicked: panel.move(0) }
                    Button { text: qsTr("Stop"); onClicked: panel.move(255) }
                    SpinBox { id: moveTo; from: 0; to: 100; value: 50; editable: true }
                    Button { text: qsTr("Go to %"); onClicked: panel.move(4, moveTo.value) }
                    Button { text: qsTr("Wink"); onClicked: panel.run("VisualFeedbackJob") }
                }
                Label { text: qsTr("Intermediate positions"); font.bold: true }
                Label {
                    visible: panel.proxy.ipsPulse === undefined
                    text: qsTr("not read"); font.italic: true; opacity: 0.6
                }
                Flow {
                    Layout.fillWidth: true
                    spacing: 12
                    Repeater {
                        model: panel.proxy.ipsPulse || []
                        Label {
                            visible: modelData !== 0xFFFF
                            text: qsTr("%1: %2 % (%3 pulses)").arg(index + 1).arg(panel.proxy.ipsPct[index]).arg(modelData)
                        }
                    }
                }
                Flow {
                    Layout.fillWidth: true
                    spacing: 6
                    Label { text: qsTr("Position number"); height: ipIndex.height; verticalAlignment: Text.AlignVCenter }
                    SpinBox { id: ipIndex; from: 1; to: 16; editable: true }
                    Label { text: qsTr("at"); height: ipIndex.height; verticalAlignment: Text.AlignVCenter }
                    SpinBox { id: ipValue; from: 0; to: 100; editable: true }
                    Label { text: "%"; height: ipIndex.height; verticalAlignment: Text.AlignVCenter }
                    Button {
                        text: qsTr("Set")
                        onClicked: panel.run("SetMotorIpJob", { ipIndex: ipIndex.value - 1, function: 3, value: ipValue.value },
                                             function(ok) { if (ok) panel.run("GetMotorIpsJob") })
                    }
                    Button {
                        text: qsTr("Delete")
                        onClicked: panel.run("SetMotorIpJob", { ipIndex: ipIndex.value - 1, function: 0, value: 0 },
                                             function(ok) { if (ok) panel.run("GetMotorIpsJob") })
                    }
                }
            }
        }

        GroupBox {
            title: qsTr("Speeds and ramps")
            visible: panel.uuid !== undefined && panel.isDCMotor
            Layout.fillWidth: true
            ColumnLayout {
                FieldRow {
                    name: qsTr("Up speed")
                    deviceValue: panel.proxy.upRollingSpeed === undefined ? undefined : qsTr("%1 rpm").arg(panel.proxy.upRollingSpeed)
                    pending: panel.pendingJobs.some(function(j) { return j[0] === "SetSpeedJob" })
                    SpinBox { id: upSpeedEdit; objectName: "upSpeedEdit"; width: parent.width; from: 6; to: 28; editable: true; onValueModified: panel.touch("speeds") }
                }
                FieldRow {
                    name: qsTr("Down speed")
                    deviceValue: panel.proxy.downRollingSpeed === undefined ? undefined : qsTr("%1 rpm").arg(panel.proxy.downRollingSpeed)
                    SpinBox { id: downSpeedEdit; width: parent.width; from: 6; to: 28; editable: true; onValueModified: panel.touch("speeds") }
                }
                FieldRow {
                    name: qsTr("Slow speed")
                    deviceValue: panel.proxy.slowRollingSpeed === undefined ? undefined : qsTr("%1 rpm").arg(panel.proxy.slowRollingSpeed)
                    SpinBox { id: slowSpeedEdit; width: parent.width; from: 6; to: 28; editable: true; onValueModified: panel.touch("speeds") }
                }
                FieldRow {
                    name: qsTr("Soft start")
                    deviceValue: panel.proxy.softStartValue === undefined ? undefined
                                 : (panel.proxy.softStartStatus ? qsTr("on, %1").arg(panel.proxy.softStartValue) : qsTr("off"))
                    pending: panel.pendingJobs.some(function(j) { return j[0] === "SetRampJob" })
                    RowLayout {
                        CheckBox { id: softStartOn; objectName: "softStartOn"; onClicked: panel.touch("ramps") }
                        SpinBox { id: softStartEdit; objectName: "softStartEdit"; from: 0; to: 100; editable: true; onValueModified: panel.touch("ramps") }
                    }
                }
                FieldRow {
                    name: qsTr("Soft stop")
                    deviceValue: panel.proxy.softStopValue === undefined ? undefined
                                 : (panel.proxy.softStopStatus ? qsTr("on, %1").arg(panel.proxy.softStopValue) : qsTr("off"))
                    RowLayout {
                        CheckBox { id: softStopOn; onClicked: panel.touch("ramps") }
                        SpinBox { id: softStopEdit; from: 0; to: 100; editable: true; onValueModified: panel.touch("ramps") }
                    }
                }
            }
        }

        GroupBox {
            title: qsTr("Jobs")
            visible: panel.uuid !== undefined && (panel.isNode || panel.several)
            Layout.fillWidth: true
            ListView {
                objectName: "jobLog"
                width: parent.width
                implicitHeight: fm.height * 8
                clip: true
                model: logModel
                delegate: Label {
                    id: entry
                    width: ListView.view.width
                    text: (model.running ? "\u25B8 " : model.ok ? "" : "\u2716 ") + model.text
                    color: model.ok ? palette.text : palette.window.hslLightness < 0.5 ? "#ff7b72" : "firebrick"
                    elide: Text.ElideRight
                    MouseArea { id: hover; anchors.fill: parent; hoverEnabled: true }
                    ToolTip.visible: hover.containsMouse && entry.truncated
                    ToolTip.text: model.text
                }
            }
        }
    }
}
