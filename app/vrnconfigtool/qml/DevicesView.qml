import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0
import "Format.js" as Format

// The device list (sortable, selectable) and the panel of the selection.
Pane {
    id: view
    property ObjectQueryModel model
    property var jobs
    readonly property var selection: model ? model.selection : null
    readonly property alias deviceCount: list.count
    readonly property alias list: list
    property alias panel: panel
    // Bumped on every selection change: the selection's type and node do
    // not notify, so they are read again here.
    property int selectionRevision: 0
    property int selectedCount: 0
    property int selectedType: 0
    property var firstSelected: undefined
    property int anchorRow: -1

    readonly property var columns: [
        { title: qsTr("Node"), role: ObjectQueryModel.NodeIDRole, width: 100 },
        { title: qsTr("Type"), role: ObjectQueryModel.TypeRole, width: 110 },
        { title: qsTr("Label"), role: ObjectQueryModel.LabelRole, width: 200 },
        { title: qsTr("Serial number"), role: ObjectQueryModel.SerialNumberRole, width: 150 },
        { title: qsTr("Seen"), role: ObjectQueryModel.NbOccurRole, width: 60 }
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
        if (modifiers & Qt.ShiftModifier && anchorRow >= 0) {
            var from = Math.min(anchorRow, row), to = Math.max(anchorRow, row)
            if (!(modifiers & Qt.ControlModifier))
                selection.clear()
            for (var r = from; r <= to; ++r)
                selection.addItems(ObjectFactory.UuidColumn, model.get(r).uuid)
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
    }

    padding: 0

    Connections {
        target: view.selection
        function onModelReset() {
            view.selectedCount = view.selection.rowCount
            view.selectedType = view.selection.selectedType
            view.firstSelected = view.selectedCount > 0 ? view.selection.data(0) : undefined
            view.selectionRevision += 1
        }
    }

    Item {
        id: listPane
        anchors.left: parent.left
        anchors.top: parent.top
        anchors.bottom: parent.bottom
        width: Math.min(660, parent.width * 0.55)

        Row {
            id: columnHeader
            Repeater {
                model: view.columns
                Button {
                    width: modelData.width
                    flat: true
                    text: modelData.title + (view.model && view.model.sortBy === modelData.role
                                             ? (view.model.sortOrder === Qt.AscendingOrder ? " \u25B2" : " \u25BC") : "")
                    onClicked: view.sortBy(modelData.role)
                }
            }
        }

        ListView {
            id: list
            objectName: "deviceList"
            anchors.top: columnHeader.bottom
            anchors.bottom: parent.bottom
            width: parent.width
            clip: true
            model: view.model
            reuseItems: true
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar { id: bar; policy: ScrollBar.AlwaysOn; minimumSize: 0.02 }

            delegate: Rectangle {
                id: row
                width: list.width
                height: 26
                readonly property bool selected: view.selectionRevision >= 0 && view.selection.contains(model.uuid)
                readonly property bool duplicate: model.nbOccur > 1
                color: selected ? palette.highlight : (index % 2 ? palette.alternateBase : palette.base)
                Row {
                    anchors.verticalCenter: parent.verticalCenter
                    Repeater {
                        model: [Format.hex(nodeID, 6), Format.typeNames[type] || String(type),
                                String(label || ""), String(serialNumber || ""),
                                row.duplicate ? "\u26A0 " + nbOccur : String(nbOccur)]
                        Label {
                            width: view.columns[index].width
                            leftPadding: 6
                            elide: Text.ElideRight
                            text: modelData
                            color: row.selected ? palette.highlightedText
                                                : (index === 4 && row.duplicate ? "darkorange" : palette.text)
                            font.bold: index === 4 && row.duplicate
                        }
                    }
                }
                MouseArea {
                    anchors.fill: parent
                    onClicked: view.clickRow(index, mouse.modifiers)
                }
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
        uuid: view.firstSelected
        selectedCount: view.selectedCount
        commonType: view.selectedType
    }
}
