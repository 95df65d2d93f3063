import QtQuick 2.15
import QtTest 1.15
import VRNConfigTool 1.0
import "qrc:/vrnconfigtool"

// A job run through the group worker of the selection, one result per device.
TestCase {
    id: testCase
    name: "Actions"
    when: windowShown

    Jobs { id: jobs }
    property ObjectQueryModel devices: ObjectFactory.createQueryModel(this)
    property ConnectionView connection: ConnectionView { devices: testCase.devices; jobs: jobs }
    ActionsView { id: view; devices: testCase.devices; jobs: jobs; width: 600; height: 400 }

    function initTestCase() {
        if (devices.rowCount() < 8) {
            verify(connection.discover())
            tryCompare(connection, "discovering", false, 5000)
        }
    }

    function test_resultPerDevice_data() {
        return [
            { tag: "read label on all", action: 0, type: -1, done: 7, failed: 1 }, // the setting tool is no network node
            { tag: "wink on motors", action: 3, type: 2, done: 2, failed: 0 },
            { tag: "wink on standard nodes", action: 3, type: 1, done: 0, failed: 3 }
        ]
    }
    function test_resultPerDevice(data) {
        view.selection.clear()
        for (var r = 0; r < devices.rowCount(); ++r)
            if (data.type < 0 || devices.get(r).type === data.type)
                view.selection.addItems(ObjectFactory.UuidColumn, devices.get(r).uuid)
        compare(view.runOnSelection(data.action), data.done + data.failed)
        tryCompare(view, "pending", 0, 5000)
        var uuids = view.results.uuids()
        compare(uuids.length, data.done + data.failed)
        for (var i = 0; i < uuids.length; ++i) {
            verify(view.selection.contains(uuids[i]))
            compare(view.results.errorString(uuids[i]) !== "", view.results.error(uuids[i]) !== Job.NoError)
        }
        compare(view.doneCount, data.done)
        compare(view.failedCount, data.failed)
    }
}
