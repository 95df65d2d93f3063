import QtQuick 2.15
import QtTest 1.15
import VRNConfigTool 1.0
import "qrc:/vrnconfigtool"

// Another bus brings its own registry: the list, the selection and every
// object of the old bus are gone; the old bus's devices stay in its file.
// (Runs last: it leaves the other bus open.)
TestCase {
    id: testCase
    name: "BusSwitch"
    when: windowShown

    Jobs { id: jobs }
    property ObjectQueryModel devices: ObjectFactory.createQueryModel(this)
    ConnectionView { id: view; devices: testCase.devices; jobs: jobs; width: 600; height: 500 }

    function test_switch() {
        verify(view.discover())
        tryCompare(view, "discovering", false, 5000)
        compare(devices.rowCount(), 8)
        var oldPath = ObjectFactory.registryPath
        verify(oldPath.indexOf("devices-loopback.sqlite") > 0, oldPath)
        var first = devices.get(0).uuid
        devices.selection.addItems(ObjectFactory.UuidColumn, first)
        var held = ObjectFactory.objectWorkerQml(testCase, first)
        verify(held !== null)

        simulator.openOtherBus("motor:2")
        compare(BusFactory.busUUID, "loopback-qml-other")
        verify(ObjectFactory.registryPath.indexOf("devices-loopback-qml-other.sqlite") > 0, ObjectFactory.registryPath)
        compare(devices.rowCount(), 0)
        compare(devices.selection.rowCount, 0)
        // A job queued on a worker of the old bus reaches no device of the new one.
        var job = jobs.kinds["GetLabelJob"].createObject(testCase)
        verify(held.data.enqueue(job, 1))
        tryCompare(job, "state", Job.Finished, 3000)
        verify(job.error !== 0)
        verify(job.errorString.indexOf("bus") >= 0 || job.errorString.indexOf("not available") >= 0, job.errorString)

        verify(view.discover())
        tryCompare(view, "discovering", false, 5000)
        compare(devices.rowCount(), 2)
        for (var row = 0; row < devices.rowCount(); ++row)
            compare(devices.get(row).type, 2)
    }
}
