import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import "Format.js" as Format

// One field of a device: its name, what the device has, the editor of what
// the user wants, and whether the two differ.
RowLayout {
    id: field
    property string name
    property var deviceValue
    property bool pending: false
    default property alias editor: slot.data
    Label { text: field.name; Layout.preferredWidth: 130 }
    Label {
        text: Format.orDash(field.deviceValue)
        Layout.preferredWidth: 150
        elide: Text.ElideRight
    }
    Item {
        id: slot
        Layout.preferredWidth: 170
        Layout.preferredHeight: childrenRect.height
    }
    Label {
        text: field.pending ? "\u25CF" : ""
        color: "darkorange"
        ToolTip.visible: field.pending && hovered
        ToolTip.text: qsTr("Not written yet")
        property bool hovered: false
    }
}
