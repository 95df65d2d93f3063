import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0

ApplicationWindow {
    id: window
    width: 1280
    height: 800
    visible: true
    title: qsTr("VRN configuration tool")

    // The views, by the names the tab bar shows.
    readonly property var viewNames: ["connection", "devices", "actions", "diagnostics", "firmware", "traffic",
                                      "backup", "history"]
    property alias currentView: tabs.currentIndex
    property string message: ""
    property bool messageIsError: false
    readonly property ObjectQueryModel devices: ObjectFactory.createQueryModel(window)
    property alias connectionView: connectionView
    property alias devicesView: devicesView
    property alias actionsView: actionsView
    property alias diagnosticsView: diagnosticsView
    property alias firmwareView: firmwareView
    property alias trafficView: trafficView
    property alias backupView: backupView
    property alias historyPanel: historyPanel
    property alias jobs: jobs

    function showView(name) { tabs.currentIndex = viewNames.indexOf(name) }
    function showMessage(text, isError) {
        message = text
        messageIsError = isError
    }

    Jobs { id: jobs }

    header: TabBar {
        id: tabs
        TabButton { text: qsTr("Connection") }
        TabButton { text: qsTr("Devices (%1)").arg(devicesView.deviceCount) }
        TabButton { text: qsTr("Actions") }
        TabButton { text: qsTr("Diagnostics") }
        TabButton { text: qsTr("Firmware") }
        TabButton { text: qsTr("Traffic") }
        TabButton { text: qsTr("Backup && Compare") }
        TabButton { text: qsTr("History") }
    }

    StackLayout {
        anchors.fill: parent
        currentIndex: tabs.currentIndex
        ConnectionView {
            id: connectionView
            devices: window.devices
            deviceCount: devicesView.deviceCount
            jobs: jobs
            onMessage: window.showMessage(text, isError)
        }
        DevicesView {
            id: devicesView
            model: window.devices
            jobs: jobs
        }
        ActionsView {
            id: actionsView
            devices: window.devices
            jobs: jobs
        }
        DiagnosticsView {
            id: diagnosticsView
            devices: window.devices
            jobs: jobs
        }
        FirmwareView {
            id: firmwareView
            devices: window.devices
            jobs: jobs
        }
        TrafficView { id: trafficView }
        BackupView {
            id: backupView
            devices: window.devices
        }
        HistoryPanel {
            id: historyPanel
            session: backupView.session
        }
    }

    // Every motor stops with one frame, from any view: the button and Escape.
    GroupControl {
        id: stopControl
        onSent: if (!ok) window.showMessage(qsTr("Stop all: %1").arg(error), true)
    }
    function stopAllMotors() {
        if (stopControl.stopAll())
            showMessage(qsTr("Stop sent to every motor"), false)
        else
            showMessage(qsTr("Stop all: %1").arg(stopControl.lastError), true)
    }
    Shortcut {
        sequence: "Escape"
        context: Qt.ApplicationShortcut
        onActivated: window.stopAllMotors()
    }

    footer: ToolBar {
        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 8
            Button {
                objectName: "stopAll"
                text: qsTr("Stop all motors (Esc)")
                palette.button: "firebrick"
                palette.buttonText: "white"
                onClicked: window.stopAllMotors()
            }
            Label {
                text: BusFactory.busUUID !== "" ? qsTr("Bus: %1").arg(BusFactory.busUUID) : qsTr("No bus open")
            }
            Label {
                objectName: "registryStatus"
                text: ObjectFactory.registryPath !== ""
                      ? qsTr("Registry: %1%2").arg(ObjectFactory.registryPath).arg(ObjectFactory.readOnly ? qsTr(" (read-only)") : "")
                      : qsTr("Registry: in memory")
                elide: Text.ElideMiddle
                Layout.maximumWidth: 420
            }
            Label {
                objectName: "statusMessage"
                Layout.fillWidth: true
                horizontalAlignment: Text.AlignRight
                rightPadding: 8
                text: window.message
                color: window.messageIsError ? "firebrick" : palette.windowText
                elide: Text.ElideLeft
            }
        }
    }

    Connections {
        target: BusFactory
        function onError(error) { window.showMessage(error, true) }
    }
    Connections {
        target: ObjectFactory
        function onWriteFailed(error) { window.showMessage(error, true) }
    }

    Component.onCompleted: {
        var uuid = startBusUUID !== "" ? startBusUUID : Settings.value("lastBusUUID", "")
        if (uuid !== "" && BusFactory.busUUID === "") {
            if (BusFactory.openUUID(uuid))
                showMessage(qsTr("Opened %1").arg(uuid), false)
            else
                showMessage(BusFactory.lastError, true)
        }
        if (devices.rowCount() > 0)
            showView("devices")
    }
}
