import QtQuick 2.15
import QtTest 1.15
import VRNConfigTool 1.0
import "qrc:/vrnconfigtool"

// The device list at 100,000 rows: search typed key by key, filters by
// kind and group, and keyboard selection across the whole list.
TestCase {
    id: testCase
    name: "Search"
    when: windowShown
    width: 1000
    height: 600

    Jobs { id: jobs }
    property ObjectQueryModel devices: null
    property int listed: 0

    Component { id: viewComponent; DevicesView { anchors.fill: parent } }
    property var view: null

    function initTestCase() {
        listed = ObjectFactory.createQueryModel(testCase).rowCount()
        simulator.fillRegistry(100000)
        devices = ObjectFactory.createQueryModel(testCase)
        view = viewComponent.createObject(testCase, { model: devices, jobs: jobs })
        compare(view.deviceCount, listed + 100000)
    }
    function cleanupTestCase() {
        view.destroy()
        simulator.emptyRegistry()
    }
    function init() {
        view.searchField.text = ""
        devices.kindFilter = []
        view.selection.clear()
    }
    function labels() {
        var out = []
        for (var r = 0; r < devices.rowCount(); ++r)
            out.push(devices.get(r).label)
        return out.sort()
    }

    function test_searchAsTyped() {
        view.searchField.forceActiveFocus()
        var typed = "row 4242"
        for (var i = 0; i < typed.length; ++i)
            keyClick(typed[i])
        compare(devices.searchText, "row 4242")
        compare(JSON.stringify(labels()), JSON.stringify(["Row 4242", "Row 42420", "Row 42421", "Row 42422", "Row 42423",
                                                          "Row 42424", "Row 42425", "Row 42426", "Row 42427", "Row 42428",
                                                          "Row 42429"]))
        compare(view.deviceCount, 11)
        // Kinds narrow the search: row x is of kind 1 + x % 7.
        devices.kindFilter = [1]
        compare(JSON.stringify(labels()), JSON.stringify(["Row 4242", "Row 42420", "Row 42427"]))
        keyClick(Qt.Key_Escape)
        compare(devices.searchText, "")
        compare(view.deviceCount, devices.rowCount())
        verify(devices.rowCount() > 14000 && devices.rowCount() < 14300)
    }

    function test_nodeNumberAndWildcards_data() {
        return [
            { tag: "node digits", text: "0x112345", count: 1, label: "Row 74565" },
            { tag: "percent is a letter", text: "%", count: 0 },
            { tag: "underscore is a letter", text: "Row_1", count: 0 },
            { tag: "quote", text: "' OR 1=1 --", count: 0 }
        ]
    }
    function test_nodeNumberAndWildcards(data) {
        view.searchField.text = data.text
        compare(view.deviceCount, data.count)
        if (data.label)
            compare(devices.get(0).label, data.label)
    }

    // Keys across the whole list: End, then Shift+Page Up selects a page
    // of rows; Ctrl+A takes every row the filter lets through.
    function test_keyboardAcrossTheList() {
        view.list.forceActiveFocus()
        keyClick(Qt.Key_Home)
        compare(view.selectedCount, 1)
        keyClick(Qt.Key_End)
        compare(view.list.currentIndex, view.deviceCount - 1)
        compare(view.selectedCount, 1)
        verify(view.selection.contains(devices.get(view.deviceCount - 1).uuid))
        keyClick(Qt.Key_PageUp, Qt.ShiftModifier)
        compare(view.selectedCount, view.rowsPerPage() + 1)
        keyClick(Qt.Key_A, Qt.ControlModifier)
        compare(view.selectedCount, view.deviceCount)
        devices.kindFilter = [3]
        view.selection.clear()
        keyClick(Qt.Key_A, Qt.ControlModifier)
        compare(view.selectedCount, devices.rowCount())
        compare(view.selectedType, 3)
    }
}
