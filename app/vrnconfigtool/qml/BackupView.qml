import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0
import VRNConfigTool.Documents 1.0

// Backup & Compare: saves every device's settings as a document, opens a
// document and shows where the devices differ from it (document and device
// side by side, the differing values marked), and writes all or the chosen
// differences back, with progress and a summary. Also the replacement of a
// device and the commissioning report.
Pane {
    id: view
    property ObjectQueryModel devices
    property alias session: session
    property alias differences: list
    property alias replaceDialog: replaceDialog
    // Indexes of the differences ticked for writing.
    property var chosen: ({})
    property int chosenCount: 0

    function choose(index, on) {
        var c = chosen
        if (on) c[index] = true
        else delete c[index]
        chosen = c
        chosenCount = Object.keys(c).length
    }
    function applyChosen() {
        var list = []
        for (var k in chosen)
            list.push(parseInt(k))
        chosen = ({})
        chosenCount = 0
        return session.apply(list)
    }

    DocumentSession {
        id: session
        onDifferencesChanged: { view.chosen = ({}); view.chosenCount = 0 }
    }

    ColumnLayout {
        anchors.fill: parent
        GridLayout {
            columns: 3
            Layout.fillWidth: true
            Label { text: qsTr("Backup file") }
            TextField {
                id: backupFile
                objectName: "backupFile"
                Layout.fillWidth: true
                placeholderText: qsTr("/path/to/site.json")
            }
            Button {
                text: qsTr("Save backup")
                enabled: !session.running && backupFile.text !== ""
                onClicked: session.backup(backupFile.text)
            }
            Label { text: qsTr("Document") }
            TextField {
                id: documentFile
                objectName: "documentFile"
                Layout.fillWidth: true
                placeholderText: qsTr("a backup to compare with the devices")
            }
            RowLayout {
                Button {
                    text: qsTr("Open and compare")
                    enabled: !session.running && documentFile.text !== ""
                    onClicked: session.open(documentFile.text, otherBus.checked)
                }
                CheckBox { id: otherBus; text: qsTr("of another bus") }
            }
            Label { text: qsTr("Report") }
            TextField {
                id: reportFile
                objectName: "reportFile"
                Layout.fillWidth: true
                placeholderText: qsTr("/path/to/report.pdf (an .html is written beside it)")
            }
            Button {
                text: qsTr("Export report\u2026")
                enabled: !session.running && reportFile.text !== ""
                onClicked: session.exportReport(reportFile.text, reportFile.text.replace(/\.pdf$/i, "") + ".html")
            }
        }

        RowLayout {
            Layout.fillWidth: true
            ProgressBar {
                Layout.fillWidth: true
                from: 0
                to: Math.max(1, session.total)
                value: session.done
                visible: session.running
            }
            Label {
                objectName: "summary"
                Layout.fillWidth: true
                text: session.lastError !== "" ? session.lastError : session.summary
                color: session.lastError !== "" ? "firebrick" : palette.windowText
                elide: Text.ElideRight
            }
        }

        Label {
            text: session.fileName === "" ? qsTr("No document open")
                  : qsTr("%1: %2 device(s), %3 difference(s)").arg(session.fileName).arg(session.deviceCount)
                    .arg(list.count)
        }

        // The differences: document and device side by side, both values marked.
        Row {
            Repeater {
                model: [{ t: "", w: 40 }, { t: qsTr("Device"), w: 100 }, { t: qsTr("Field"), w: 140 },
                        { t: qsTr("Document"), w: 280 }, { t: qsTr("Device value"), w: 280 }]
                Label { text: modelData.t; font.bold: true; width: modelData.w; padding: 4 }
            }
        }
        ListView {
            id: list
            objectName: "differencesList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: session.differences
            ScrollBar.vertical: ScrollBar {}
            delegate: Row {
                height: 30
                CheckBox {
                    width: 40
                    checked: view.chosen[modelData.index] === true
                    onToggled: view.choose(modelData.index, checked)
                }
                Label { text: modelData.node; width: 100; padding: 4; anchors.verticalCenter: parent.verticalCenter }
                Label { text: modelData.field; width: 140; padding: 4; anchors.verticalCenter: parent.verticalCenter }
                Rectangle {
                    width: 276
                    height: 26
                    anchors.verticalCenter: parent.verticalCenter
                    color: "#e3f1e3"
                    Label { objectName: "documentValue"; anchors.fill: parent; padding: 4; text: modelData.document; elide: Text.ElideRight }
                }
                Item { width: 4; height: 1 }
                Rectangle {
                    width: 276
                    height: 26
                    anchors.verticalCenter: parent.verticalCenter
                    color: "#f8e0e0"
                    Label { objectName: "deviceValue"; anchors.fill: parent; padding: 4; text: modelData.device; elide: Text.ElideRight }
                }
            }
        }

        RowLayout {
            Button {
                text: qsTr("Apply all")
                enabled: !session.running && list.count > 0
                onClicked: session.apply([])
            }
            Button {
                text: qsTr("Apply selected (%1)").arg(view.chosenCount)
                enabled: !session.running && view.chosenCount > 0
                onClicked: view.applyChosen()
            }
            Item { Layout.fillWidth: true }
            Button {
                text: qsTr("Replace device\u2026")
                enabled: !session.running && session.deviceCount > 0
                onClicked: replaceDialog.open()
            }
        }
    }

    ReplaceDeviceDialog {
        id: replaceDialog
        session: session
        devices: view.devices
    }
}
