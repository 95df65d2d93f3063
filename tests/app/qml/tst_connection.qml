import QtQuick 2.15
import QtTest 1.15
import VRNConfigTool 1.0
import "qrc:/vrnconfigtool"

// Opening a bus, and discovery with its summary.
TestCase {
    id: testCase
    name: "Connection"
    when: windowShown

    Jobs { id: jobs }
    property ObjectQueryModel devices: ObjectFactory.createQueryModel(this)
    ConnectionView { id: view; devices: testCase.devices; jobs: jobs; width: 600; height: 500 }

    function test_1_badBusShowsLibraryText_data() {
        return [
            { tag: "group", group: "not a group", port: 47001, bind: "127.0.0.1", text: "Failed to parse MultiCast URI" },
            { tag: "bind", group: "239.255.9.9", port: 47001, bind: "nowhere", text: "Failed to parse MultiCast bind address" }
        ]
    }
    function test_1_badBusShowsLibraryText(data) {
        verify(!view.openMCast(data.group, data.port, data.bind))
        compare(view.lastError, BusFactory.lastError)
        verify(view.lastError.indexOf(data.text) === 0, view.lastError)
        compare(BusFactory.busUUID, "loopback")   // the open bus stays
    }

    function test_2_discoverySummary() {
        verify(view.discover())
        tryCompare(view, "discovering", false, 5000)
        compare(view.foundCount, 8)
        compare(view.newCount + view.knownCount, 8)
        compare(view.missingCount, 0)
        compare(devices.rowCount(), 8)

        simulator.unplug(simulator.numbers()[0])
        verify(view.discover())
        tryCompare(view, "discovering", false, 5000)
        compare(view.foundCount, 7)
        compare(view.newCount, 0)
        compare(view.knownCount, 7)
        compare(view.missingCount, 1)
        simulator.unplug(simulator.numbers()[0], false)
    }
}
