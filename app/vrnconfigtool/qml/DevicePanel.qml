import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0
import "Format.js" as Format

// The panel of the selected device: what the device has (read from it)
// beside what the user wants, and one action that writes the differences.
// Which sections show follows the type common to the whole selection.
ScrollView {
    id: panel
    property var jobs
    property var uuid
    property int selectedCount: 0
    property int commonType: 0
    readonly property bool isMotor: Format.isMotorType(commonType)
    readonly property bool isDCMotor: Format.isDCMotorType(commonType)
    readonly property var proxy: Format.known(records.proxy)
    readonly property var runtime: Format.known(records.runtime)
    property var shared: null
    property string nodeText: ""
    // Texts of the jobs that ended, newest first.
    property alias log: logModel
    property bool watching: false
    property int stableReads: 0

    readonly property var pendingJobs: {
        var out = []
        if (labelEdit.text !== String(proxy.label || ""))
            out.push(["SetLabelJob", { label: labelEdit.text }])
        if (groupsEdit.acceptableInput && groupsEdit.text !== Format.groupsText(proxy.groups))
            out.push(["SetGroupsJob", { groups: Format.parseGroups(groupsEdit.text) }])
        if (isMotor && proxy.rotDirection !== undefined && directionEdit.currentIndex !== proxy.rotDirection)
            out.push(["SetDirectionJob", { direction: directionEdit.currentIndex }])
        if (isMotor && upLimitEdit.value !== proxy.upEndLimit && proxy.upEndLimit !== undefined)
            out.push(["SetEndLimitsJob", { command: 1, limit: 1, delta: upLimitEdit.value }])
        if (isMotor && downLimitEdit.value !== proxy.downEndLimit && proxy.downEndLimit !== undefined)
            out.push(["SetEndLimitsJob", { command: 1, limit: 0, delta: downLimitEdit.value }])
        if (isDCMotor && proxy.upRollingSpeed !== undefined
                && (upSpeedEdit.value !== proxy.upRollingSpeed || downSpeedEdit.value !== proxy.downRollingSpeed
                    || slowSpeedEdit.value !== proxy.slowRollingSpeed))
            out.push(["SetSpeedJob", { upSpeed: upSpeedEdit.value, downSpeed: downSpeedEdit.value,
                                       slowSpeed: slowSpeedEdit.value }])
        if (isDCMotor && proxy.softStartValue !== undefined
                && (softStartEdit.value !== proxy.softStartValue || softStopEdit.value !== proxy.softStopValue
                    || softStartOn.checked !== !!proxy.softStartStatus || softStopOn.checked !== !!proxy.softStopStatus))
            out.push(["SetRampJob", { softStartStatus: softStartOn.checked ? 1 : 0, softStartValue: softStartEdit.value,
                                      softStopStatus: softStopOn.checked ? 1 : 0, softStopValue: softStopEdit.value,
                                      ramps: 1 }])
        return out
    }

    function note(name, ok, text) {
        logModel.insert(0, { text: ok ? qsTr("%1: done").arg(name) : qsTr("%1 failed: %2").arg(name).arg(text), ok: ok })
        if (logModel.count > 50)
            logModel.remove(50, logModel.count - 50)
    }
    function run(name, props, then) {
        if (uuid === undefined)
            return false
        var forUuid = uuid
        return jobs.run(uuid, name, props, function(ok, text, result) {
            if (forUuid === panel.uuid)
                note(name, ok, text)
            if (then)
                then(ok, text, result)
        })
    }
    // Reads everything the panel shows from the device.
    function readAll() {
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
        for (var i = 0; i < todo.length; ++i) {
            var name = todo[i][0]
            run(name, todo[i][1], function(name) {
                return function(ok) { if (ok && readBack[name]) run(readBack[name]) }
            }(name))
        }
        return todo.length
    }
    // Editors follow the device's values until the user changes them
    // (`touched`), so that reads arriving later never undo an edit.
    property var touched: ({})
    function touch(key) { touched[key] = true }
    function seedEditors() {
        var setters = {
            label: function(v) { labelEdit.text = String(v) },
            groups: function(v) { groupsEdit.text = Format.groupsText(v) },
            rotDirection: function(v) { directionEdit.currentIndex = v },
            upEndLimit: function(v) { upLimitEdit.value = v },
            downEndLimit: function(v) { downLimitEdit.value = v },
            upRollingSpeed: function(v) { upSpeedEdit.value = v },
            downRollingSpeed: function(v) { downSpeedEdit.value = v },
            slowRollingSpeed: function(v) { slowSpeedEdit.value = v },
            softStartValue: function(v) { softStartEdit.value = v },
            softStopValue: function(v) { softStopEdit.value = v },
            softStartStatus: function(v) { softStartOn.checked = !!v },
            softStopStatus: function(v) { softStopOn.checked = !!v }
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
        seedEditors()
    }
    // Moves, then reads the position until it stays the same a few times.
    function move(command, value) {
        run("MotorControlJob", { command: command, value: value || 0 }, function(ok) {
            if (ok) {
                stableReads = 0
                watching = true
            }
        })
    }

    onUuidChanged: {
        watching = false
        logModel.clear()
        touched = {}
        labelEdit.text = ""
        groupsEdit.text = ""
        if (shared)
            shared.destroy()
        shared = uuid !== undefined ? ObjectFactory.objectQml(panel, uuid) : null
        nodeText = shared && shared.data ? Format.deviceText(shared.data) : ""
        if (uuid !== undefined)
            readAll()
    }
    Connections {
        target: records
        function onRecordsChanged() { panel.seedEditors() }
    }

    background: Rectangle { color: panel.palette.window }

    DeviceRecords { id: records; device: panel.shared ? panel.shared.data : null }
    ListModel { id: logModel }

    Timer {
        interval: 150
        repeat: true
        running: panel.watching
        property var last
        onTriggered: panel.run("GetPositionJob", undefined, function(ok, text, result) {
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
            visible: panel.uuid !== undefined
            font.bold: true
            font.pixelSize: 16
            text: panel.selectedCount > 1
                  ? qsTr("%1 devices selected (%2); showing the first").arg(panel.selectedCount).arg(Format.typeNames[panel.commonType])
                  : panel.nodeText
        }
        RowLayout {
            visible: panel.uuid !== undefined
            Label { text: records.sync ? qsTr("Synchronised") : qsTr("Not synchronised"); color: records.sync ? "green" : "darkorange" }
            Label { text: records.dirty ? qsTr("dirty") : qsTr("clean"); color: records.dirty ? "darkorange" : "green" }
            Item { Layout.fillWidth: true }
            Button { text: qsTr("Read again"); onClicked: panel.readAll() }
            Button {
                objectName: "writePending"
                text: qsTr("Write %1 changes").arg(panel.pendingJobs.length)
                enabled: panel.pendingJobs.length > 0
                onClicked: panel.writePending()
            }
            Button { text: qsTr("Undo edits"); onClicked: panel.resetEditors() }
        }

        GroupBox {
            title: qsTr("Node")
            visible: panel.uuid !== undefined
            Layout.fillWidth: true
            ColumnLayout {
                RowLayout {
                    Label { text: qsTr("Field"); font.bold: true; Layout.preferredWidth: 130 }
                    Label { text: qsTr("Device"); font.bold: true; Layout.preferredWidth: 150 }
                    Label { text: qsTr("Wanted"); font.bold: true; Layout.preferredWidth: 170 }
                }
                FieldRow {
                    name: qsTr("Label")
                    deviceValue: panel.proxy.label
                    pending: labelEdit.text !== String(panel.proxy.label || "")
                    TextField {
                        id: labelEdit
                        objectName: "labelEdit"
                        width: 170
                        maximumLength: 16
                        onTextEdited: panel.touch("label")
                    }
                }
                FieldRow {
                    name: qsTr("Groups (hex)")
                    deviceValue: Format.groupsText(panel.proxy.groups)
                    pending: groupsEdit.text !== Format.groupsText(panel.proxy.groups)
                    TextField {
                        id: groupsEdit
                        width: 170
                        onTextEdited: panel.touch("groups")
                        validator: RegularExpressionValidator { regularExpression: /^\s*([0-9A-Fa-f]{1,6}(\s*,\s*[0-9A-Fa-f]{1,6})*)?\s*$/ }
                    }
                }
                FieldRow { name: qsTr("Firmware"); deviceValue: panel.proxy.firmwareVersion }
                FieldRow { name: qsTr("Serial number"); deviceValue: panel.proxy.serialNumber }
            }
        }

        GroupBox {
            title: qsTr("Motor")
            visible: panel.uuid !== undefined && panel.isMotor
            Layout.fillWidth: true
            ColumnLayout {
                FieldRow {
                    name: qsTr("Direction")
                    deviceValue: panel.proxy.rotDirection === undefined ? undefined
                                 : panel.proxy.rotDirection ? qsTr("reversed") : qsTr("standard")
                    pending: panel.proxy.rotDirection !== undefined && directionEdit.currentIndex !== panel.proxy.rotDirection
                    ComboBox {
                        id: directionEdit
                        width: 170
                        model: [qsTr("standard"), qsTr("reversed")]
                        onActivated: panel.touch("rotDirection")
                    }
                }
                FieldRow {
                    name: qsTr("Up end limit")
                    deviceValue: panel.proxy.upEndLimit
                    pending: panel.proxy.upEndLimit !== undefined && upLimitEdit.value !== panel.proxy.upEndLimit
                    SpinBox { id: upLimitEdit; width: 170; from: 0; to: 65535; editable: true; onValueModified: panel.touch("upEndLimit") }
                }
                FieldRow {
                    name: qsTr("Down end limit")
                    deviceValue: panel.proxy.downEndLimit
                    pending: panel.proxy.downEndLimit !== undefined && downLimitEdit.value !== panel.proxy.downEndLimit
                    SpinBox { id: downLimitEdit; width: 170; from: 0; to: 65535; editable: true; onValueModified: panel.touch("downEndLimit") }
                }
                FieldRow {
                    name: qsTr("Position")
                    deviceValue: panel.runtime.posPulse === undefined ? undefined
                                 : qsTr("%1 pulses, %2 %").arg(panel.runtime.posPulse).arg(panel.runtime.posPCent)
                    Label { objectName: "positionLabel"; text: panel.watching ? qsTr("moving...") : "" }
                }
                RowLayout {
                    Button { text: qsTr("Up"); onClicked: panel.move(1) }
                    Button { text: qsTr("Down"); onClicked: panel.move(0) }
                    Button { text: qsTr("Stop"); onClicked: panel.move(255) }
                    SpinBox { id: moveTo; from: 0; to: 100; value: 50; editable: true }
                    Button { text: qsTr("Go to %"); onClicked: panel.move(4, moveTo.value) }
                    Button { text: qsTr("Wink"); onClicked: panel.run("VisualFeedbackJob") }
                }
                Label { text: qsTr("Intermediate positions"); font.bold: true }
                Flow {
                    Layout.fillWidth: true
                    spacing: 6
                    Repeater {
                        model: panel.proxy.ipsPulse || []
                        Label {
                            visible: modelData !== 0xFFFF
                            text: qsTr("#%1: %2 (%3 %)").arg(index).arg(modelData).arg(panel.proxy.ipsPct[index])
                        }
                    }
                }
                RowLayout {
                    SpinBox { id: ipIndex; from: 0; to: 15; editable: true }
                    SpinBox { id: ipValue; from: 0; to: 100; editable: true }
                    Button {
                        text: qsTr("Set at %")
                        onClicked: panel.run("SetMotorIpJob", { ipIndex: ipIndex.value, function: 3, value: ipValue.value })
                    }
                    Button {
                        text: qsTr("Delete")
                        onClicked: panel.run("SetMotorIpJob", { ipIndex: ipIndex.value, function: 0, value: 0 })
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
                    deviceValue: panel.proxy.upRollingSpeed
                    pending: panel.proxy.upRollingSpeed !== undefined && upSpeedEdit.value !== panel.proxy.upRollingSpeed
                    SpinBox { id: upSpeedEdit; objectName: "upSpeedEdit"; width: 170; from: 6; to: 28; editable: true; onValueModified: panel.touch("upRollingSpeed") }
                }
                FieldRow {
                    name: qsTr("Down speed")
                    deviceValue: panel.proxy.downRollingSpeed
                    pending: panel.proxy.downRollingSpeed !== undefined && downSpeedEdit.value !== panel.proxy.downRollingSpeed
                    SpinBox { id: downSpeedEdit; width: 170; from: 6; to: 28; editable: true; onValueModified: panel.touch("downRollingSpeed") }
                }
                FieldRow {
                    name: qsTr("Slow speed")
                    deviceValue: panel.proxy.slowRollingSpeed
                    pending: panel.proxy.slowRollingSpeed !== undefined && slowSpeedEdit.value !== panel.proxy.slowRollingSpeed
                    SpinBox { id: slowSpeedEdit; width: 170; from: 6; to: 28; editable: true; onValueModified: panel.touch("slowRollingSpeed") }
                }
                FieldRow {
                    name: qsTr("Soft start")
                    deviceValue: panel.proxy.softStartValue === undefined ? undefined
                                 : (panel.proxy.softStartStatus ? qsTr("on, %1").arg(panel.proxy.softStartValue) : qsTr("off"))
                    RowLayout {
                        CheckBox { id: softStartOn; onClicked: panel.touch("softStartStatus") }
                        SpinBox { id: softStartEdit; from: 0; to: 100; editable: true; onValueModified: panel.touch("softStartValue") }
                    }
                }
                FieldRow {
                    name: qsTr("Soft stop")
                    deviceValue: panel.proxy.softStopValue === undefined ? undefined
                                 : (panel.proxy.softStopStatus ? qsTr("on, %1").arg(panel.proxy.softStopValue) : qsTr("off"))
                    RowLayout {
                        CheckBox { id: softStopOn; onClicked: panel.touch("softStopStatus") }
                        SpinBox { id: softStopEdit; from: 0; to: 100; editable: true; onValueModified: panel.touch("softStopValue") }
                    }
                }
            }
        }

        GroupBox {
            title: qsTr("Diagnostics and statistics")
            visible: panel.uuid !== undefined
            Layout.fillWidth: true
            Flow {
                width: parent.width
                spacing: 12
                Repeater {
                    model: Object.keys(panel.runtime).filter(function(k) {
                        return k !== "posPulse" && k !== "posPCent" && panel.runtime[k] !== undefined })
                    Label { text: modelData + ": " + panel.runtime[modelData] }
                }
                Label {
                    visible: Object.keys(panel.runtime).filter(function(k) {
                        return k !== "posPulse" && k !== "posPCent" && panel.runtime[k] !== undefined }).length === 0
                    text: qsTr("Nothing read yet")
                }
            }
        }

        GroupBox {
            title: qsTr("Jobs")
            visible: panel.uuid !== undefined
            Layout.fillWidth: true
            ListView {
                objectName: "jobLog"
                width: parent.width
                implicitHeight: 120
                clip: true
                model: logModel
                delegate: Label { text: model.text; color: model.ok ? palette.text : "firebrick" }
            }
        }
    }
}
