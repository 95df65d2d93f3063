import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import "Format.js" as Format

// One field of a device: its name, what the device has ("not read" until
// a read tells), the editor of what the user wants, and whether the two
// differ. A wrong entry shows why under the editor.
ColumnLayout {
    id: field
    property string name
    property var deviceValue
    property bool pending: false
    // Why the entry cannot be written, "" when it can.
    property string problem: ""
    // The editor shows once the device's value is known (or always, for
    // fields that need no value read first).
    property bool editable: deviceValue !== undefined
    default property alias editor: slot.data
    spacing: 2
    RowLayout {
        Label {
            text: field.name
            Layout.preferredWidth: fm.averageCharacterWidth * 20
            elide: Text.ElideRight
        }
        Label {
            id: valueLabel
            objectName: "deviceValue"
            text: Format.orNotRead(field.deviceValue)
            font.italic: field.deviceValue === undefined
            opacity: field.deviceValue === undefined ? 0.6 : 1
            Layout.preferredWidth: fm.averageCharacterWidth * 21
            elide: Text.ElideRight
            MouseArea { id: valueHover; anchors.fill: parent; hoverEnabled: true }
            ToolTip.visible: valueHover.containsMouse && valueLabel.truncated
            ToolTip.text: valueLabel.text
        }
        Item {
            id: slot
            visible: field.editable
            Layout.preferredWidth: fm.averageCharacterWidth * 22
            Layout.preferredHeight: childrenRect.height
        }
        Label {
            text: field.problem !== "" ? "\u2716" : field.pending ? "\u25CF" : ""
            color: field.problem !== "" ? "firebrick" : "darkorange"
            MouseArea { id: markHover; anchors.fill: parent; hoverEnabled: true }
            ToolTip.visible: markHover.containsMouse && text !== ""
            ToolTip.text: field.problem !== "" ? field.problem : qsTr("Changed here, not written to the device yet")
        }
    }
    Label {
        objectName: "fieldProblem"
        visible: field.problem !== ""
        text: field.problem
        color: "firebrick"
        wrapMode: Text.Wrap
        Layout.leftMargin: fm.averageCharacterWidth * 40
        Layout.fillWidth: true
    }
    FontMetrics { id: fm }
}
