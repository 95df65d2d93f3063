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

    function test_1_badBusShowsLibraryText() {
        verify(!view.openMCast("not a group", 47001, "127.0.0.1"))
        compare(view.lastError, BusFactory.lastError)
        verify(view.lastError.indexOf("Failed to parse MultiCast URI") === 0, view.lastError)
        compare(BusFactory.busUUID, "loopback")   // the open bus stays
    }

    SignalSpy { id: jobEnds; target: jobs; signalName: "done" }

    function test_2_discoverySummary() {
        jobEnds.clear()
        verify(view.discover())
        tryCompare(view, "discovering", false, 5000)
        compare(view.foundCount, 8)
        compare(view.newCount + view.knownCount, 8)
        compare(view.missingCount, 0)
        compare(devices.rowCount(), 8)

        // A filtered device list changes nothing in the count; the labels
        // of the nodes found are read, as the command-line tool does. The
        // setting tool is asked nothing, so no read fails.
        tryCompare(view, "readingLabels", false, 5000)
        tryCompare(jobs, "running", 0, 5000)
        compare(view.labelsAsked, 7)
        compare(view.labelsRead, 7)
        compare(jobEnds.count, 14)
        for (var i = 0; i < jobEnds.count; ++i)
            verify(jobEnds.signalArguments[i][2], jobEnds.signalArguments[i][0] + ": " + jobEnds.signalArguments[i][3])
        devices.searchText = "no such device"
        simulator.unplug(simulator.numbers()[0])
        verify(view.discover())
        tryCompare(view, "discovering", false, 5000)
        compare(view.foundCount, 7)
        compare(view.newCount, 0)
        compare(view.knownCount, 7)
        compare(view.missingCount, 1)
        devices.searchText = ""
        simulator.unplug(simulator.numbers()[0], false)
    }
}
