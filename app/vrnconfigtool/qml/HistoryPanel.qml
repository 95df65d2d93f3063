import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool.Documents 1.0

// History: every write either tool made to the devices, from the registry's
// change log, oldest first; optionally since a time.
Pane {
    id: panel
    property var session
    property alias entries: list

    function refresh() { list.model = session ? session.history(since.text) : [] }

    ColumnLayout {
        anchors.fill: parent
        RowLayout {
            Label { text: qsTr("Since") }
            TextField {
                id: since
                placeholderText: qsTr("2026-05-04T10:00:00Z (empty: everything)")
                Layout.preferredWidth: 300
                onAccepted: panel.refresh()
            }
            Button { text: qsTr("Refresh"); onClicked: panel.refresh() }
        }
        Row {
            Repeater {
                model: [{ t: qsTr("Time"), w: 200 }, { t: qsTr("Tool"), w: 110 }, { t: qsTr("Device"), w: 90 },
                        { t: qsTr("Field"), w: 130 }, { t: qsTr("Old"), w: 170 }, { t: qsTr("New"), w: 170 },
                        { t: qsTr("Outcome"), w: 200 }]
                Label { text: modelData.t; font.bold: true; width: modelData.w; padding: 4 }
            }
        }
        ListView {
            id: list
            objectName: "historyList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            ScrollBar.vertical: ScrollBar {}
            delegate: Row {
                Repeater {
                    model: [{ v: modelData.time, w: 200 }, { v: modelData.tool, w: 110 },
                            { v: "0x" + ("000000" + modelData.node.toString(16)).slice(-6), w: 90 },
                            { v: modelData.field, w: 130 }, { v: JSON.stringify(modelData.old), w: 170 },
                            { v: JSON.stringify(modelData["new"]), w: 170 }, { v: modelData.outcome, w: 200 }]
                    Label {
                        text: modelData.v === undefined ? "" : modelData.v
                        width: modelData.w
                        padding: 4
                        elide: Text.ElideRight
                        color: index === 6 && modelData.v !== "ok" ? "firebrick" : palette.windowText
                    }
                }
            }
        }
    }
    Component.onCompleted: refresh()
}
