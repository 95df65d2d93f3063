import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0
import "Format.js" as Format

// The device list (searchable, filtered by kind and group, sortable,
// selectable with mouse and keyboard) and the panel of the selection.
Pane {
    id: view
    property ObjectQueryModel model
    property var jobs
    readonly property var selection: model ? model.selection : null
    readonly property alias deviceCount: list.count
    readonly property alias list: list
    readonly property alias searchField: search
    property alias panel: panel
    // Bumped on every selection change: the selection's type and node do
    // not notify, so they are read again here.
    property int selectionRevision: 0
    property int selectedCount: 0
    property int selectedType: 0
    // The device the panel shows: the current row when it is selected,
    // else the first selected device.
    property var shownUuid: undefined
    property int anchorRow: -1
    property var knownGroups: []

    signal openView(string name)

    readonly property var columns: [
        { title: qsTr("Node"), role: ObjectQueryModel.NodeIDRole, chars: 13 },
        { title: qsTr("Kind"), role: ObjectQueryModel.TypeRole, chars: 17 },
        { title: qsTr("Label"), role: ObjectQueryModel.LabelRole, chars: 20 },
        { title: qsTr("Serial number"), role: ObjectQueryModel.SerialNumberRole, chars: 15 },
        { title: qsTr("Clash"), role: ObjectQueryModel.NbOccurRole, chars: 13 }
    ]

    function sortBy(role) {
        if (model.sortBy === role)
            model.setSort(role, model.sortOrder === Qt.AscendingOrder ? Qt.DescendingOrder : Qt.AscendingOrder)
        else
            model.setSort(role, Qt.AscendingOrder)
    }

    // A click selects the row; control adds or removes it; shift selects
    // from the last clicked row to this one.
    function clickRow(row, modifiers) {
        var uuid = model.get(row).uuid
        list.currentIndex = row
        if (modifiers & Qt.ShiftModifier && anchorRow >= 0) {
            if (!(modifiers & Qt.ControlModifier))
                selection.clear()
            model.selectRows(anchorRow, row)
        } else if (modifiers & Qt.ControlModifier) {
            if (selection.contains(uuid))
                selection.removeItems(ObjectFactory.UuidColumn, uuid)
            else
                selection.addItems(ObjectFactory.UuidColumn, uuid)
            anchorRow = row
        } else {
            selection.setItems(ObjectFactory.UuidColumn, uuid)
            anchorRow = row
        }
        updateShown()
    }
    // Keyboard: arrows and page keys move the current row and select it;
    // with shift the selection grows from the anchor; with control only the
    // current row moves (space then adds or removes it).
    // Scrolls the list just enough to show row `i` whole. Qt 6.4's
    // positionViewAtIndex leaves a row just below the view where it is.
    function showRow(i) {
        list.positionViewAtIndex(i, ListView.Contain)
        var item = list.itemAtIndex(i)
        if (!item)
            return
        if (item.y + item.height > list.contentY + list.height)
            list.contentY = item.y + item.height - list.height
        else if (item.y < list.contentY)
            list.contentY = item.y
    }
    function moveCurrent(to, modifiers) {
        if (list.count === 0)
            return
        to = Math.max(0, Math.min(list.count - 1, to))
        if (anchorRow < 0)
            anchorRow = Math.max(0, list.currentIndex)
        list.currentIndex = to
        showRow(to)
        if (modifiers & Qt.ShiftModifier) {
            if (!(modifiers & Qt.ControlModifier))
                selection.clear()
            model.selectRows(anchorRow, to)
        } else if (!(modifiers & Qt.ControlModifier)) {
            selection.setItems(ObjectFactory.UuidColumn, model.get(to).uuid)
            anchorRow = to
        }
        updateShown()
    }
    function selectAll() {
        model.selectAll()
        updateShown()
    }
    function selectKind(type) {
        selection.setItems(ObjectFactory.TypeColumn, type)
        updateShown()
    }
    function selectGroup(group) {
        selection.clear()
        selection.addGroup(group)
        updateShown()
    }
    function updateShown() {
        var current = list.currentIndex >= 0 && list.currentIndex < list.count ? model.get(list.currentIndex).uuid : undefined
        if (current !== undefined && selection.contains(current))
            shownUuid = current
        else if (selectedCount > 0)
            shownUuid = shownUuid !== undefined && selection.contains(shownUuid) ? shownUuid : selection.data(0)
        else
            shownUuid = undefined
    }
    function rowsPerPage() { return Math.max(1, Math.floor(list.height / rowHeight) - 1) }
    readonly property int rowHeight: Math.round(fm.height * 1.7)

    padding: 0
    FontMetrics { id: fm }

    Connections {
        target: view.selection
        function onModelReset() {
            view.selectedCount = view.selection.rowCount
            // 0 where the devices share no kind (a node and a setting tool).
            view.selectedType = view.selection.commonKind
            view.selectionRevision += 1
            view.updateShown()
        }
    }
    Connections {
        target: view.model
        function onFilterChanged() { view.anchorRow = -1; list.currentIndex = -1 }
    }

    Menu {
        id: contextMenu
        MenuItem { text: qsTr("Read again"); enabled: view.selectedCount > 0; onTriggered: panel.readAll() }
        MenuItem { text: qsTr("Wink"); enabled: view.selectedCount > 0 && Format.isMotorType(view.selectedType); onTriggered: view.openView("actions:wink") }
        MenuItem { text: qsTr("Network statistics and counters\u2026"); enabled: view.selectedCount > 0; onTriggered: view.openView("diagnostics") }
        MenuItem { text: qsTr("Firmware\u2026"); enabled: view.selectedCount > 0; onTriggered: view.openView("firmware") }
        MenuSeparator {}
        MenuItem { text: qsTr("Select all"); onTriggered: view.selectAll() }
        MenuItem { text: qsTr("Select all of this kind"); enabled: view.selectedCount > 0 && view.selectedType > 0; onTriggered: view.selectKind(view.selectedType) }
        MenuItem { text: qsTr("Select none"); onTriggered: view.selection.clear() }
        MenuSeparator {}
        MenuItem {
            text: qsTr("Remove from the list (%1)").arg(view.selectedCount)
            enabled: view.selectedCount > 0
            onTriggered: confirmRemove.open()
        }
    }
    Dialog {
        id: confirmRemove
        anchors.centerIn: Overlay.overlay
        modal: true
        title: qsTr("Remove from the list: %1 devices?").arg(view.selectedCount)
        standardButtons: Dialog.Ok | Dialog.Cancel
        Label { text: qsTr("The devices themselves are not changed; a discovery lists them again.") }
        onAccepted: view.selection.destroyObjectsQml()
    }

    Item {
        id: listPane
        anchors.left: parent.left
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: Math.min(fm.averageCharacterWidth * 78, parent.width * 0.5)

        ColumnLayout {
            id: tools
            width: parent.width
            spacing: 4
            RowLayout {
                Layout.fillWidth: true
                Layout.leftMargin: 4
                Layout.rightMargin: 4
                TextField {
                    id: search
                    objectName: "deviceSearch"
                    Layout.fillWidth: true
                    placeholderText: qsTr("Search label, node number or serial number (Ctrl+F)")
                    selectByMouse: true
                    onTextChanged: if (view.model) view.model.searchText = text
                    Keys.onDownPressed: { list.forceActiveFocus(); view.moveCurrent(0, 0) }
                    Keys.onEscapePressed: text = ""
                }
                Button {
                    id: kindButton
                    objectName: "kindFilter"
                    text: view.model && view.model.kindFilter.length > 0
                          ? qsTr("Kinds (%1)").arg(view.model.kindFilter.length) : qsTr("All kinds")
                    onClicked: kindMenu.open()
                    Menu {
                        id: kindMenu
                        y: kindButton.height
                        Repeater {
                            model: Format.kinds
                            MenuItem {
                                text: Format.kindName(modelData)
                                checkable: true
                                checked: view.model && view.model.kindFilter.indexOf(modelData) >= 0
                                onTriggered: {
                                    var kinds = view.model.kindFilter.slice()
                                    var at = kinds.indexOf(modelData)
                                    if (at >= 0) kinds.splice(at, 1); else kinds.push(modelData)
                                    view.model.kindFilter = kinds
                                }
                            }
                        }
                        MenuSeparator {}
                        MenuItem { text: qsTr("Every kind"); onTriggered: view.model.kindFilter = [] }
                    }
                }
                ComboBox {
                    id: groupBox
                    objectName: "groupFilter"
                    model: [qsTr("All groups")].concat(view.knownGroups.map(function(g) { return qsTr("Group %1").arg(Format.hex(g, 6)) }))
                    onActivated: function(index) { view.model.groupFilter = index === 0 ? -1 : view.knownGroups[index - 1] }
                    onPressedChanged: if (pressed) view.knownGroups = view.model.knownGroups()
                    Component.onCompleted: view.knownGroups = view.model ? view.model.knownGroups() : []
                }
            }
            RowLayout {
                Layout.leftMargin: 6
                Label {
                    objectName: "listCount"
                    text: view.model && view.model.filtered
                          ? qsTr("%1 devices match, %2 selected").arg(list.count).arg(view.selectedCount)
                          : qsTr("%1 devices, %2 selected").arg(list.count).arg(view.selectedCount)
                }
                Item { Layout.fillWidth: true }
                Button {
                    id: selectButton
                    text: qsTr("Select\u2026")
                    flat: true
                    onClicked: selectMenu.open()
                    Menu {
                        id: selectMenu
                        y: selectButton.height
                        MenuItem { text: qsTr("All listed (Ctrl+A)"); onTriggered: view.selectAll() }
                        MenuItem { text: qsTr("None"); onTriggered: view.selection.clear() }
                        MenuSeparator {}
                        Repeater {
                            model: Format.kinds
                            MenuItem { text: qsTr("Every %1").arg(Format.kindName(modelData)); onTriggered: view.selectKind(modelData) }
                        }
                        MenuSeparator {}
                        Repeater {
                            model: view.knownGroups
                            MenuItem { text: qsTr("Group %1").arg(Format.hex(modelData, 6)); onTriggered: view.selectGroup(modelData) }
                        }
                        onAboutToShow: view.knownGroups = view.model.knownGroups()
                    }
                }
            }
            Row {
                id: columnHeader
                Repeater {
                    model: view.columns
                    Button {
                        width: fm.averageCharacterWidth * modelData.chars
                        flat: true
                        text: modelData.title + (view.model && view.model.sortBy === modelData.role
                                                 ? (view.model.sortOrder === Qt.AscendingOrder ? " \u25B2" : " \u25BC") : "")
                        onClicked: view.sortBy(modelData.role)
                        ToolTip.visible: hovered
                        ToolTip.text: qsTr("Sort by this column; again to reverse")
                    }
                }
            }
        }

        ListView {
            id: list
            objectName: "deviceList"
            anchors.top: tools.bottom
            anchors.bottom: parent.bottom
            width: parent.width
            clip: true
            focus: true
            model: view.model
            reuseItems: true
            currentIndex: -1
            highlightFollowsCurrentItem: false
            keyNavigationEnabled: false
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar { id: bar; policy: ScrollBar.AlwaysOn; minimumSize: 0.02 }
            activeFocusOnTab: true

            Keys.onPressed: function(event) {
                var m = event.modifiers & (Qt.ShiftModifier | Qt.ControlModifier)
                var cur = Math.max(0, currentIndex)
                switch (event.key) {
                case Qt.Key_Up: view.moveCurrent(currentIndex < 0 ? 0 : cur - 1, m); break
                case Qt.Key_Down: view.moveCurrent(currentIndex < 0 ? 0 : cur + 1, m); break
                case Qt.Key_PageUp: view.moveCurrent(cur - view.rowsPerPage(), m); break
                case Qt.Key_PageDown: view.moveCurrent(cur + view.rowsPerPage(), m); break
                case Qt.Key_Home: view.moveCurrent(0, m); break
                case Qt.Key_End: view.moveCurrent(count - 1, m); break
                case Qt.Key_Space:
                    if (currentIndex >= 0) view.clickRow(currentIndex, Qt.ControlModifier)
                    break
                case Qt.Key_A:
                    if (!(event.modifiers & Qt.ControlModifier)) return
                    view.selectAll()
                    break
                case Qt.Key_Menu:
                    contextMenu.popup(list, 20, currentItem ? currentItem.y - contentY + view.rowHeight : 20)
                    break
                default:
                    return
                }
                event.accepted = true
            }

            delegate: Rectangle {
                id: row
                width: list.width
                height: view.rowHeight
                readonly property bool selected: view.selectionRevision >= 0 && view.selection.contains(model.uuid)
                readonly property bool duplicate: model.nbOccur > 1
                // A number or node type no device can have (an older
                // registry, a forged answer): marked, and no job runs on it.
                readonly property string problem: view.jobs ? view.jobs.problemText(ObjectFactory.deviceProblem(model.uuid)) : ""
                readonly property bool current: ListView.isCurrentItem
                color: selected ? palette.highlight : (index % 2 ? palette.alternateBase : palette.base)
                border.width: current && list.activeFocus ? 1 : 0
                border.color: palette.highlight.hslLightness > 0.5 ? palette.dark : palette.highlight
                Row {
                    anchors.verticalCenter: parent.verticalCenter
                    Repeater {
                        model: [Format.hex(nodeID, 6), Format.kindName(type),
                                String(label || ""), Format.serialText(serialNumber),
                                row.problem !== "" ? "\u26A0 " + qsTr("invalid") : row.duplicate ? "\u26A0 " + nbOccur : ""]
                        Label {
                            objectName: "cell" + index
                            width: fm.averageCharacterWidth * view.columns[index].chars
                            leftPadding: 6
                            elide: Text.ElideRight
                            text: modelData
                            color: row.selected ? palette.highlightedText
                                                : (index === 0 || index === 4) && row.problem !== "" ? "firebrick"
                                                : (index === 4 && row.duplicate ? "darkorange" : palette.text)
                            font.bold: index === 4 && (row.duplicate || row.problem !== "")
                        }
                    }
                }
                MouseArea {
                    id: rowMouse
                    anchors.fill: parent
                    hoverEnabled: row.duplicate || row.problem !== ""
                    acceptedButtons: Qt.LeftButton | Qt.RightButton
                    onClicked: function(mouse) {
                        list.forceActiveFocus()
                        if (mouse.button === Qt.RightButton) {
                            if (!row.selected)
                                view.clickRow(index, 0)
                            contextMenu.popup()
                        } else {
                            view.clickRow(index, mouse.modifiers)
                        }
                    }
                }
                ToolTip.visible: (row.duplicate || row.problem !== "") && rowMouse.containsMouse
                ToolTip.delay: 500
                ToolTip.text: row.problem !== ""
                              ? qsTr("Invalid row, %1. No job is sent to it: forget it and discover the devices again.")
                                .arg(row.problem)
                              : qsTr("%1 devices answer on node number %2. The bus cannot tell them apart: "
                                     + "their answers may mix and a write may reach the wrong one. "
                                     + "Give one of them another node number.").arg(model.nbOccur).arg(Format.hex(nodeID, 6))
            }

            Label {
                anchors.centerIn: parent
                visible: list.count === 0
                text: view.model && view.model.filtered ? qsTr("No device matches the search or filter.")
                                                        : qsTr("No device listed yet: open a bus and discover its devices.")
                opacity: 0.7
            }
        }
    }

    DevicePanel {
        id: panel
        anchors.left: listPane.right
        anchors.right: parent.right
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        anchors.leftMargin: 4
        jobs: view.jobs
        uuid: view.shownUuid
        selectedCount: view.selectedCount
        commonType: view.selectedType
        selection: view.selection
    }
}
