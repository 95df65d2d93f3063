import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0

// Replace device: the old device from the open document, the new one from
// the registry; "Preview" reads the new device and lists what will be
// written, "Replace" writes it, and the registry then knows the new device
// in the old one's place.
Dialog {
    id: dialog
    property var session
    property ObjectQueryModel devices
    property alias oldChoice: oldBox
    property alias newChoice: newBox
    title: qsTr("Replace device")
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 640
    height: 480
    standardButtons: Dialog.Cancel

    function registryDevices() {
        var out = []
        for (var row = 0; devices && row < devices.rowCount(); ++row) {
            var d = devices.get(row)
            out.push({ uuid: d.uuid, text: "0x" + ("000000" + d.nodeID.toString(16)).slice(-6) + "  " + d.label })
        }
        return out
    }
    // Chooses the old device by its index in the document and the new one by uuid.
    function choose(documentIndex, newUuid) {
        for (var i = 0; i < oldBox.model.length; ++i)
            if (oldBox.model[i].index === documentIndex) oldBox.currentIndex = i
        for (var j = 0; j < newBox.model.length; ++j)
            if (newBox.model[j].uuid === newUuid) newBox.currentIndex = j
    }
    function preview() {
        return session.previewReplace(oldBox.model[oldBox.currentIndex].index, newBox.model[newBox.currentIndex].uuid)
    }
    onAboutToShow: {
        oldBox.model = session.documentDevices()
        newBox.model = registryDevices()
    }

    ColumnLayout {
        anchors.fill: parent
        GridLayout {
            columns: 2
            Label { text: qsTr("Old device (document)") }
            ComboBox {
                id: oldBox
                objectName: "oldDevice"
                Layout.fillWidth: true
                textRole: "text"
                delegate: ItemDelegate { text: modelData.node + "  " + modelData.kind + "  " + modelData.label; width: oldBox.width }
                displayText: currentIndex >= 0 && model ? model[currentIndex].node + "  " + model[currentIndex].label : ""
            }
            Label { text: qsTr("New device (bus)") }
            ComboBox {
                id: newBox
                objectName: "newDevice"
                Layout.fillWidth: true
                textRole: "text"
            }
        }
        Button {
            text: qsTr("Preview")
            enabled: !session.running && oldBox.currentIndex >= 0 && newBox.currentIndex >= 0
            onClicked: dialog.preview()
        }
        Label {
            text: session.lastError !== "" ? session.lastError
                  : qsTr("%1 field(s) will be written").arg(preview.count)
            color: session.lastError !== "" ? "firebrick" : palette.windowText
        }
        ListView {
            id: preview
            objectName: "previewList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: session.preview
            delegate: Label {
                text: modelData.field + ":  " + modelData.device + "  \u2192  " + modelData.document
                padding: 2
            }
        }
        Button {
            text: qsTr("Replace")
            enabled: !session.running && preview.count > 0
            onClicked: session.confirmReplace()
        }
    }
}
