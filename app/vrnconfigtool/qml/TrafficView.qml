import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0
import "Format.js" as Format

// The frames seen on the bus, filtered by node and by command.
Pane {
    id: view
    readonly property VRNListenerViewModel listener: BusFactory.listener
    readonly property alias count: frames.count
    FontMetrics { id: fm }

    ColumnLayout {
        anchors.fill: parent
        RowLayout {
            Label { text: qsTr("Node (hex)") }
            TextField {
                id: nodeFilter
                objectName: "nodeFilter"
                placeholderText: qsTr("all")
                validator: RegularExpressionValidator { regularExpression: /^[0-9A-Fa-f]{0,6}$/ }
                onTextChanged: if (view.listener) view.listener.nodeFilter = text === "" ? -1 : parseInt(text, 16)
            }
            Label { text: qsTr("Command (hex)") }
            TextField {
                id: commandFilter
                objectName: "commandFilter"
                placeholderText: qsTr("all")
                validator: RegularExpressionValidator { regularExpression: /^[0-9A-Fa-f]{0,2}$/ }
                onTextChanged: if (view.listener) view.listener.commandFilter = text === "" ? -1 : parseInt(text, 16)
            }
            Item { Layout.fillWidth: true }
            Label { text: qsTr("%1 frames").arg(frames.count) }
            CheckBox { id: follow; text: qsTr("Follow"); checked: true }
            Button { text: qsTr("Clear"); onClicked: if (view.listener) view.listener.clear() }
        }
        Row {
            Repeater {
                model: [[qsTr("Time"), 14], [qsTr("Direction"), 10], [qsTr("Source"), 14], [qsTr("Destination"), 14],
                        [qsTr("Command"), 28], [qsTr("Payload"), 40]]
                Label { width: fm.averageCharacterWidth * modelData[1]; text: modelData[0]; font.bold: true; leftPadding: 4 }
            }
        }
        ListView {
            id: frames
            objectName: "frames"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: view.listener
            reuseItems: true
            ScrollBar.vertical: ScrollBar {}
            onCountChanged: if (follow.checked) positionViewAtEnd()
            delegate: Row {
                readonly property color tint: model.valid ? palette.text : "firebrick"
                Label { width: fm.averageCharacterWidth * 14; leftPadding: 4; color: tint; text: Qt.formatTime(model.time, "hh:mm:ss.zzz") }
                Label { width: fm.averageCharacterWidth * 10; leftPadding: 4; color: tint; text: model.direction === 0 ? qsTr("sent") : qsTr("received") }
                Label { width: fm.averageCharacterWidth * 14; leftPadding: 4; color: tint; text: model.source === undefined ? "" : Format.hex(model.source & 0xFFFFFF, 6) }
                Label { width: fm.averageCharacterWidth * 14; leftPadding: 4; color: tint; text: model.destination === undefined ? "" : Format.hex(model.destination, 6) }
                Label { width: fm.averageCharacterWidth * 28; leftPadding: 4; color: tint; text: model.commandName; elide: Text.ElideRight }
                Label { leftPadding: 4; color: tint; text: model.payload }
            }
        }
    }
}
