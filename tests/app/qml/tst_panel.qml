import QtQuick 2.15
import QtTest 1.15
import VRNConfigTool 1.0
import "qrc:/vrnconfigtool"

// The device panel: reads, pending changes written in one action, values
// kept in range, a device that vanishes.
TestCase {
    id: testCase
    name: "Panel"
    when: windowShown
    width: 900
    height: 900

    Jobs { id: jobs }
    property ObjectQueryModel devices: ObjectFactory.createQueryModel(this)
    property ConnectionView connection: ConnectionView { devices: testCase.devices; jobs: jobs }
    DevicePanel { id: panel; jobs: jobs; anchors.fill: parent }

    function initTestCase() {
        if (devices.rowCount() < 8) {
            verify(connection.discover())
            tryCompare(connection, "discovering", false, 5000)
        }
    }
    function init() {
        panel.uuid = undefined
        tryCompare(jobs, "running", 0, 3000)
    }

    // The first device of `type`: its uuid and node number.
    function device(type) {
        for (var r = 0; r < devices.rowCount(); ++r) {
            var row = devices.get(r)
            if (row.type === type)
                return row
        }
        fail("no device of type " + type)
    }
    function records() { return panel.proxy }
    function show(row) {
        panel.commonType = row.type
        panel.selectedCount = 1
        panel.uuid = row.uuid
        tryCompare(jobs, "running", 0, 3000)
    }

    function test_readsWhatTheTypeHas_data() {
        return [
            { tag: "standard", type: 1, known: ["label", "firmwareVersion"], unknown: ["upEndLimit", "upRollingSpeed"] },
            { tag: "motor", type: 2, known: ["label", "rotDirection", "upEndLimit"], unknown: ["upRollingSpeed"] },
            { tag: "DC motor", type: 6, known: ["label", "upEndLimit", "upRollingSpeed", "softStartValue"], unknown: [] }
        ]
    }
    function test_readsWhatTheTypeHas(data) {
        show(device(data.type))
        for (var i = 0; i < data.known.length; ++i)
            verify(panel.proxy[data.known[i]] !== undefined, data.known[i] + " " + JSON.stringify(records()))
        for (var j = 0; j < data.unknown.length; ++j)
            verify(panel.proxy[data.unknown[j]] === undefined, data.unknown[j])
        compare(JSON.stringify(panel.pendingJobs), "[]")
    }

    function test_writePendingChanges() {
        var row = device(6)
        show(row)
        findChild(panel, "labelEdit").text = "Terrace"
        var speed = findChild(panel, "upSpeedEdit")
        speed.value = panel.proxy.upRollingSpeed === 20 ? 21 : 20
        var wanted = speed.value
        compare(panel.pendingJobs.length, 2)
        compare(panel.writePending(), 2)
        tryVerify(function() { return panel.proxy.label === "Terrace" && panel.proxy.upRollingSpeed === wanted }, 3000)
        compare(panel.pendingJobs.length, 0)
        compare(simulator.label(row.nodeID & 0xFFFFFF), "Terrace")
    }

    function test_valuesStayInRange_data() {
        return [
            { tag: "speed above", name: "upSpeedEdit", value: 40, expected: 28 },
            { tag: "speed below", name: "upSpeedEdit", value: 2, expected: 6 }
        ]
    }
    function test_valuesStayInRange(data) {
        show(device(6))
        var edit = findChild(panel, data.name)
        edit.value = data.value
        compare(edit.value, data.expected)
        var label = findChild(panel, "labelEdit")
        label.text = ""
        label.forceActiveFocus()
        var letters = "abcdefghijklmnopqrstuvwxyz"
        for (var i = 0; i < letters.length; ++i)
            keyClick(letters[i])
        compare(label.text.length, 16)
    }

    function test_vanishedDeviceFailsWithText() {
        var row = device(1)
        show(row)
        simulator.unplug(row.nodeID & 0xFFFFFF)
        panel.log.clear()
        panel.readAll()
        tryCompare(jobs, "running", 0, 3000)
        simulator.unplug(row.nodeID & 0xFFFFFF, false)
        compare(panel.log.count, 3)
        for (var i = 0; i < panel.log.count; ++i) {
            verify(!panel.log.get(i).ok)
            verify(/failed: \S/.test(panel.log.get(i).text), panel.log.get(i).text)
        }
        // still usable: the next device answers
        show(device(2))
        verify(!panel.log.get(0).text.match(/failed/))
    }
}
