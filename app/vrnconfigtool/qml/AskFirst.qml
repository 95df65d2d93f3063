import QtQuick 2.15
import QtQuick.Controls 2.15

// Asks before a change that reaches several devices or cannot be undone;
// `ask(question, then)` runs `then` once the user agrees.
//
// A dialog that has never been shown sizes itself in a loop when its content
// changes (Qt Quick Controls 2 warns of a binding loop on implicitWidth):
// what it shows is bound to `visible` and so changes only while it is open.
// The application's other dialogs with changing content do the same.
Dialog {
    id: dialog
    objectName: "askFirst"
    property var then: null
    property string question
    modal: true
    anchors.centerIn: parent
    title: qsTr("Please confirm")
    standardButtons: Dialog.Yes | Dialog.No
    Label { wrapMode: Text.WordWrap; text: dialog.visible ? dialog.question : "" }
    function ask(question, then) {
        dialog.question = question
        dialog.then = then
        open()
    }
    onAccepted: if (then) then()
}
