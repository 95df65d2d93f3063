import QtQuick 2.15
import QtQuick.Controls 2.15

// Asks before a change that reaches several devices or cannot be undone;
// `ask(question, then)` runs `then` once the user agrees.
Dialog {
    id: dialog
    objectName: "askFirst"
    property var then: null
    property alias question: text.text
    modal: true
    anchors.centerIn: parent
    title: qsTr("Please confirm")
    standardButtons: Dialog.Yes | Dialog.No
    Label { id: text; wrapMode: Text.WordWrap }
    function ask(question, then) {
        dialog.question = question
        dialog.then = then
        open()
    }
    onAccepted: if (then) then()
}
