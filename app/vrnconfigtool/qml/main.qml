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
                                      "backup", "history", "health"]
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
    property alias healthView: healthView
    property alias backupView: backupView
    property alias historyPanel: historyPanel
    property alias jobs: jobs
    property alias aboutDialog: about
    property alias messagesPopup: messages

    // "system", "light" or "dark"; the system's follows its palette.
    property string themeChoice: Settings.value("theme", "system")
    readonly property bool dark: themeChoice === "dark" || (themeChoice === "system" && systemPalette.window.hslLightness < 0.5)
    onThemeChoiceChanged: Settings.setValue("theme", themeChoice)

    function showView(name) {
        var at = viewNames.indexOf(name.split(":")[0])
        if (at >= 0)
            tabs.currentIndex = at
        if (name === "actions:wink")
            actionsView.choose("VisualFeedbackJob")
    }
    function showMessage(text, isError) {
        message = text
        messageIsError = isError
        appLog.add(text, isError)
    }

    SystemPalette { id: systemPalette }
    Theme { id: theme; dark: window.dark }
    palette.window: theme.window
    palette.windowText: theme.text
    palette.base: theme.base
    palette.alternateBase: theme.alternateBase
    palette.text: theme.text
    palette.button: theme.button
    palette.buttonText: theme.text
    palette.brightText: theme.brightText
    palette.highlight: theme.highlight
    palette.highlightedText: theme.highlightedText
    palette.toolTipBase: theme.base
    palette.toolTipText: theme.text
    palette.light: theme.light
    palette.midlight: theme.midlight
    palette.mid: theme.mid
    palette.dark: theme.darkShade
    palette.shadow: theme.shadow

    Jobs { id: jobs }

    Shortcut { sequence: "Ctrl+Q"; context: Qt.ApplicationShortcut; onActivated: Qt.quit() }
    Shortcut { sequence: "Ctrl+Tab"; context: Qt.ApplicationShortcut; onActivated: tabs.currentIndex = (tabs.currentIndex + 1) % tabs.count }
    Shortcut { sequence: "Ctrl+Shift+Tab"; context: Qt.ApplicationShortcut; onActivated: tabs.currentIndex = (tabs.currentIndex + tabs.count - 1) % tabs.count }
    Shortcut { sequences: ["Ctrl+Backtab"]; context: Qt.ApplicationShortcut; onActivated: tabs.currentIndex = (tabs.currentIndex + tabs.count - 1) % tabs.count }
    Shortcut {
        sequence: StandardKey.Find
        context: Qt.ApplicationShortcut
        onActivated: {
            showView("devices")
            devicesView.searchField.forceActiveFocus()
            devicesView.searchField.selectAll()
        }
    }
    Shortcut {
        sequence: "F5"
        context: Qt.ApplicationShortcut
        onActivated: {
            if (tabs.currentIndex === 1)
                devicesView.panel.readAll()
            else if (tabs.currentIndex === 3)
                diagnosticsView.read()
            else if (tabs.currentIndex === 0)
                connectionView.discover()
        }
    }

    menuBar: MenuBar {
        Menu {
            title: qsTr("&File")
            MenuItem { text: qsTr("&Messages\u2026"); onTriggered: messages.open() }
            MenuSeparator {}
            MenuItem { text: qsTr("&Quit (Ctrl+Q)"); onTriggered: Qt.quit() }
        }
        Menu {
            title: qsTr("&View")
            Repeater {
                model: [qsTr("Connection"), qsTr("Devices"), qsTr("Actions"), qsTr("Diagnostics"), qsTr("Firmware"), qsTr("Traffic"),
                        qsTr("Backup && Compare").replace("&&", "&"), qsTr("History"), qsTr("Health")]
                MenuItem { text: modelData; onTriggered: tabs.currentIndex = index }
            }
            MenuSeparator {}
            MenuItem { text: qsTr("Theme as the system"); checkable: true; checked: window.themeChoice === "system"; onTriggered: window.themeChoice = "system" }
            MenuItem { text: qsTr("Light theme"); checkable: true; checked: window.themeChoice === "light"; onTriggered: window.themeChoice = "light" }
            MenuItem { text: qsTr("Dark theme"); checkable: true; checked: window.themeChoice === "dark"; onTriggered: window.themeChoice = "dark" }
        }
        Menu {
            title: qsTr("&Help")
            MenuItem { text: qsTr("&About\u2026"); onTriggered: about.open() }
        }
    }

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
        TabButton { text: qsTr("Health") }
    }

    StackLayout {
        anchors.fill: parent
        currentIndex: tabs.currentIndex
        ConnectionView {
            id: connectionView
            devices: window.devices
            deviceCount: devicesView.deviceCount
            jobs: jobs
            onMessage: function(text, isError) { window.showMessage(text, isError) }
        }
        DevicesView {
            id: devicesView
            model: window.devices
            jobs: jobs
            onOpenView: function(name) { window.showView(name) }
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
        HealthView { id: healthView }
    }

    // Every motor stops with one frame, from any view: the button and Escape.
    GroupControl {
        id: stopControl
        onSent: function(group, ok, error) { if (!ok) window.showMessage(qsTr("Stop all: %1").arg(error), true) }
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
        FontMetrics { id: statusMetrics }
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
                objectName: "statusBus"
                text: BusFactory.busUUID !== "" ? qsTr("Bus: %1").arg(BusFactory.busUUID) : qsTr("No bus open")
            }
            // A long path keeps both ends (folder and file name) and shows
            // whole when pointed at.
            Label {
                id: registryStatus
                objectName: "registryStatus"
                text: ObjectFactory.registryPath !== ""
                      ? qsTr("Registry: %1%2").arg(ObjectFactory.registryPath).arg(ObjectFactory.readOnly ? qsTr(" (read-only)") : "")
                      : qsTr("Registry: in memory")
                elide: Text.ElideMiddle
                Layout.fillWidth: true
                Layout.preferredWidth: implicitWidth
                Layout.maximumWidth: implicitWidth
                Layout.minimumWidth: Math.min(implicitWidth, statusMetrics.averageCharacterWidth * 24)
                HoverHandler { id: registryHover }
                ToolTip.visible: registryHover.hovered && ObjectFactory.registryPath !== ""
                ToolTip.text: ObjectFactory.readOnly ? qsTr("Device registry of this bus, read-only: %1").arg(ObjectFactory.registryPath)
                                                     : qsTr("Device registry of this bus: %1").arg(ObjectFactory.registryPath)
            }
            Label {
                objectName: "statusMessage"
                Layout.fillWidth: true
                Layout.preferredWidth: implicitWidth
                Layout.minimumWidth: Math.min(implicitWidth, statusMetrics.averageCharacterWidth * 24)
                horizontalAlignment: Text.AlignRight
                rightPadding: 8
                text: window.message
                color: window.messageIsError ? theme.error : palette.windowText
                // A message starts with what it is about ("Discovery: 30
                // found, ..."): its start stays, whole in the tooltip.
                elide: Text.ElideRight
                MouseArea { id: messageHover; anchors.fill: parent; hoverEnabled: true; onClicked: messages.open() }
                ToolTip.visible: messageHover.containsMouse && window.message !== ""
                ToolTip.text: window.message
            }
            ToolButton {
                text: appLog.errorCount > 0 ? qsTr("Messages (%1 \u26A0)").arg(appLog.errorCount) : qsTr("Messages")
                onClicked: messages.open()
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
    Connections {
        target: jobs
        function onDone(name, uuid, ok, errorText, result) {
            if (!ok)
                appLog.add(qsTr("%1 (device %2)").arg(jobs.outcomeText(name, ok, errorText)).arg(uuid), true)
        }
    }

    Popup {
        id: messages
        objectName: "messages"
        anchors.centerIn: Overlay.overlay
        width: Math.min(window.width - 80, 900)
        height: Math.min(window.height - 80, 500)
        modal: true
        ColumnLayout {
            anchors.fill: parent
            RowLayout {
                Label { text: qsTr("Messages"); font.bold: true; Layout.fillWidth: true }
                Label { text: qsTr("Also written to %1").arg(appLog.path); opacity: 0.7; elide: Text.ElideMiddle; Layout.maximumWidth: 500 }
                Button { text: qsTr("Clear"); onClicked: appLog.clear() }
                Button { text: qsTr("Close"); onClicked: messages.close() }
            }
            ListView {
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                model: appLog.entries
                ScrollBar.vertical: ScrollBar {}
                delegate: Label {
                    width: ListView.view.width
                    text: modelData
                    wrapMode: Text.Wrap
                    color: modelData.indexOf("\u26A0") === 0 ? theme.error : palette.text
                }
            }
        }
    }

    Dialog {
        id: about
        objectName: "about"
        anchors.centerIn: Overlay.overlay
        modal: true
        title: qsTr("About the VRN configuration tool")
        standardButtons: Dialog.Close
        ColumnLayout {
            Label { objectName: "aboutVersion"; text: qsTr("Application version %1").arg(appVersion) }
            Label { objectName: "aboutLibrary"; text: qsTr("Configuration library version %1").arg(libraryVersion) }
            Label { text: qsTr("Log file: %1").arg(appLog.path) }
            Label { text: qsTr("Configures the motors, standard nodes and setting tools of a VRN network.") }
        }
    }

    Component.onCompleted: {
        var uuid = startBusUUID !== "" ? startBusUUID : Settings.value("lastBusUUID", "")
        if (uuid !== "" && BusFactory.busUUID === "") {
            if (BusFactory.openUUID(uuid))
                connectionView.opened(qsTr("Opened %1").arg(uuid))
            else
                showMessage(BusFactory.lastError, true)
        }
        if (devices.rowCount() > 0)
            showView("devices")
    }
}
