import QtQuick 2.15
import QtTest 1.15
import VRNConfigTool 1.0
import "qrc:/vrnconfigtool"

// The device list: sorting, selection by click, control and shift, and the
// selection's common type.
TestCase {
    id: testCase
    name: "Devices"
    when: windowShown
    width: 1000
    height: 600

    Jobs { id: jobs }
    property ObjectQueryModel devices: ObjectFactory.createQueryModel(this)
    property ConnectionView connection: ConnectionView { devices: testCase.devices; jobs: jobs }
    DevicesView { id: view; model: devices; jobs: jobs; anchors.fill: parent }

    function initTestCase() {
        if (devices.rowCount() < 8) {
            verify(connection.discover())
            tryCompare(connection, "discovering", false, 5000)
        }
        tryCompare(view, "deviceCount", 8)
    }

    function test_sortOrder_data() {
        return [
            { tag: "node ascending", role: ObjectQueryModel.NodeIDRole, clicks: 1, key: "nodeID", sign: 1 },
            { tag: "type descending", role: ObjectQueryModel.TypeRole, clicks: 2, key: "type", sign: -1 }
        ]
    }
    function test_sortOrder(data) {
        devices.setSort(ObjectQueryModel.UuidRole, Qt.AscendingOrder)
        for (var i = 0; i < data.clicks; ++i)
            view.sortBy(data.role)
        compare(devices.sortOrder, data.sign > 0 ? Qt.AscendingOrder : Qt.DescendingOrder)
        for (var r = 1; r < devices.rowCount(); ++r)
            verify(data.sign * (devices.get(r)[data.key] - devices.get(r - 1)[data.key]) >= 0, "row " + r)
    }

    // Clicks on rows (row, modifiers), then the rows that must be selected.
    function test_selection_data() {
        return [
            { tag: "click", clicks: [[3, 0]], rows: [3] },
            { tag: "click replaces", clicks: [[3, 0], [5, 0]], rows: [5] },
            { tag: "control adds", clicks: [[1, 0], [4, Qt.ControlModifier]], rows: [1, 4] },
            { tag: "control removes", clicks: [[1, 0], [4, Qt.ControlModifier], [1, Qt.ControlModifier]], rows: [4] },
            { tag: "shift range", clicks: [[2, 0], [5, Qt.ShiftModifier]], rows: [2, 3, 4, 5] },
            { tag: "shift upwards", clicks: [[6, 0], [4, Qt.ShiftModifier]], rows: [4, 5, 6] },
            { tag: "control shift keeps", clicks: [[0, 0], [6, Qt.ControlModifier], [7, Qt.ControlModifier | Qt.ShiftModifier]],
              rows: [0, 6, 7] }
        ]
    }
    function test_selection(data) {
        devices.setSort(ObjectQueryModel.NodeIDRole, Qt.AscendingOrder)
        view.selection.clear()
        // The rows' mouse areas hand their clicks to clickRow (a real click
        // on a row is in the screenshot test, where the window renders).
        for (var i = 0; i < data.clicks.length; ++i)
            view.clickRow(data.clicks[i][0], data.clicks[i][1])
        compare(view.selectedCount, data.rows.length)
        for (var r = 0; r < devices.rowCount(); ++r)
            compare(view.selection.contains(devices.get(r).uuid), data.rows.indexOf(r) >= 0, "row " + r)
    }

    // Keys on the list, then the rows that must be selected and the
    // current row. Arrows move and select; Shift extends from the anchor;
    // Control moves without selecting, Space then adds the row.
    function test_keyboardSelection_data() {
        return [
            { tag: "arrows", keys: [[Qt.Key_Down, 0], [Qt.Key_Down, 0]], rows: [2], current: 2 },
            { tag: "up stops at the top", keys: [[Qt.Key_Up, 0], [Qt.Key_Up, 0]], rows: [0], current: 0 },
            { tag: "shift extends", keys: [[Qt.Key_Down, 0], [Qt.Key_Down, Qt.ShiftModifier], [Qt.Key_Down, Qt.ShiftModifier]],
              rows: [1, 2, 3], current: 3 },
            { tag: "shift extends, descending", descending: true,
              keys: [[Qt.Key_Down, 0], [Qt.Key_Down, Qt.ShiftModifier], [Qt.Key_Down, Qt.ShiftModifier]], rows: [1, 2, 3], current: 3 },
            { tag: "shift back shrinks", keys: [[Qt.Key_Down, 0], [Qt.Key_Down, Qt.ShiftModifier], [Qt.Key_Down, Qt.ShiftModifier],
                                                 [Qt.Key_Up, Qt.ShiftModifier]], rows: [1, 2], current: 2 },
            { tag: "control space adds", keys: [[Qt.Key_Down, 0], [Qt.Key_Down, Qt.ControlModifier], [Qt.Key_Down, Qt.ControlModifier],
                                                 [Qt.Key_Space, 0]], rows: [1, 3], current: 3 },
            { tag: "end, shift home", keys: [[Qt.Key_End, 0], [Qt.Key_Home, Qt.ShiftModifier]], rows: [0, 1, 2, 3, 4, 5, 6, 7], current: 0 },
            { tag: "page down", keys: [[Qt.Key_PageDown, 0]], rows: [7], current: 7 },
            { tag: "control A", keys: [[Qt.Key_A, Qt.ControlModifier]], rows: [0, 1, 2, 3, 4, 5, 6, 7], current: 0 }
        ]
    }
    function test_keyboardSelection(data) {
        devices.setSort(ObjectQueryModel.NodeIDRole, data.descending ? Qt.DescendingOrder : Qt.AscendingOrder)
        view.clickRow(0, 0)
        view.list.forceActiveFocus()
        for (var i = 0; i < data.keys.length; ++i)
            keyClick(data.keys[i][0], data.keys[i][1])
        compare(view.list.currentIndex, data.current)
        for (var r = 0; r < devices.rowCount(); ++r)
            compare(view.selection.contains(devices.get(r).uuid), data.rows.indexOf(r) >= 0, "row " + r)
        // The panel shows the current row when it is selected.
        if (data.rows.indexOf(data.current) >= 0)
            compare(view.shownUuid, devices.get(data.current).uuid)
    }

    function test_commonTypeDecidesPanels() {
        devices.setSort(ObjectQueryModel.TypeRole, Qt.AscendingOrder)
        var dc = -1, motor = -1, std = -1, tool = -1
        for (var r = 0; r < devices.rowCount(); ++r) {
            var t = devices.get(r).type
            if (t === 6 && dc < 0) dc = r
            if (t === 2 && motor < 0) motor = r
            if (t === 1 && std < 0) std = r
            if (t === 7 && tool < 0) tool = r
        }
        view.clickRow(dc, 0)
        verify(view.panel.isMotor && view.panel.isDCMotor)
        view.clickRow(motor, Qt.ControlModifier)
        compare(view.selectedType, 2)
        verify(view.panel.isMotor && !view.panel.isDCMotor)
        view.clickRow(std, Qt.ControlModifier)
        verify(!view.panel.isMotor)
        compare(view.panel.selectedCount, 3)
        // With a setting tool the devices share no kind: not called setting tools.
        view.clickRow(tool, Qt.ControlModifier)
        compare(view.selectedType, 0)
        compare(findChild(view.panel, "panelTitle").text, "4 devices selected, of different kinds")
    }
}
