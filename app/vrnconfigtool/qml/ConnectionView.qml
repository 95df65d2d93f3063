import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0

// Opening the bus (a serial port, or a multicast group) and discovering its devices.
Pane {
    id: view
    property ObjectQueryModel devices
    property var jobs
    property int deviceCount: 0

    // Last discovery: running, and its summary.
    property bool discovering: false
    property int foundCount: -1
    property int newCount: 0
    property int knownCount: 0
    property int missingCount: 0
    property string lastError: ""
    // Labels read after a discovery: how many asked, how many answered.
    property int labelsAsked: 0
    property int labelsRead: 0
    property int labelsFailed: 0
    readonly property bool readingLabels: labelsRead + labelsFailed < labelsAsked
    // Every device of the registry, whatever the device list filters.
    readonly property ObjectQueryModel registry: ObjectFactory.createQueryModel(view)
    // The buses opened last, newest first (at most five).
    property var recentBuses: Settings.value("recentBuses", []) || []

    signal message(string text, bool isError)

    function remember(uuid) {
        var list = [uuid]
        var old = recentBuses || []
        for (var i = 0; i < old.length && list.length < 5; ++i)
            if (old[i] !== uuid && old[i] !== "")
                list.push(old[i])
        recentBuses = list
        Settings.setValue("recentBuses", list)
    }
    function opened(text) {
        remember(BusFactory.busUUID)
        message(text, false)
    }
    function report(ok, errorText) {
        lastError = ok ? "" : errorText
        if (ok)
            opened(qsTr("Opened %1").arg(busText(BusFactory.busUUID)))
        else
            message(errorText, true)
        return ok
    }
    function openSerial(name) { return report(BusFactory.openSerial(name), BusFactory.lastError) }
    function openMCast(group, port, bind) {
        return report(BusFactory.openMCast(group + ":" + port, bind), BusFactory.lastError)
    }
    function openUUID(uuid) { return report(BusFactory.openUUID(uuid), BusFactory.lastError) }
    // A bus identifier in words.
    function busText(uuid) {
        if (!uuid)
            return qsTr("no bus")
        var p = uuid.split(":")
        if (p[0] === "mcast")
            return qsTr("multicast group %1, port %2, on %3").arg(p[1]).arg(p[2]).arg(p[3])
        if (p[0] === "serial")
            return qsTr("serial port %1").arg(uuid.substring(7))
        return uuid
    }
    // The fields show the bus that is open.
    function showOpenBus() {
        var p = BusFactory.busUUID.split(":")
        if (p[0] === "mcast" && p.length >= 4) {
            groupField.text = p[1]
            portField.value = parseInt(p[2])
            bindField.text = p[3]
        } else if (p[0] === "serial") {
            portBox.editText = BusFactory.busUUID.substring(7)
        }
    }
    Connections {
        target: BusFactory
        function onBusUUIDChanged() { view.showOpenBus() }
    }
    Component.onCompleted: showOpenBus()

    // Discovery runs on the bus worker; the summary compares the devices
    // found with the rows known before. The serial numbers and labels of
    // the nodes found are read afterwards, as the command-line tool does.
    function discover() {
        if (discovering || !BusFactory.busWorker)
            return false
        var before = registry.rowCount()
        var job = discoverJob.createObject(view)
        discovering = true
        foundCount = -1
        job.finished.connect(function() {
            discovering = false
            if (job.error !== 0) {
                lastError = job.errorString
                message(qsTr("Discovery failed: %1").arg(job.errorString), true)
            } else {
                // Each device gets the kind its node type names (DC motors,
                // setting tools), as vrnconfig gives it.
                var nodes = job.answeredNodes
                for (var i = 0; job.result && i < job.result.length && i < nodes.length; ++i)
                    ObjectFactory.settleKind(nodes[i], job.result[i])
                var found = job.result ? job.result.length : 0
                var added = registry.rowCount() - before
                foundCount = found
                newCount = added
                knownCount = found - added
                missingCount = before - knownCount
                message(qsTr("Discovery: %1 found, %2 new, %3 known, %4 missing")
                        .arg(found).arg(newCount).arg(knownCount).arg(missingCount), false)
                readLabels(typeof appHelper !== "undefined" ? appHelper.foundDevices(job) : (job.result || []))
            }
            job.destroy()
        })
        return BusFactory.busWorker.enqueue(job, 100)
    }
    function readLabels(uuids) {
        labelsAsked = 0
        labelsRead = 0
        labelsFailed = 0
        for (var i = 0; i < uuids.length; ++i) {
            var uuid = uuids[i]
            // A setting tool answers no node request: nothing to ask it.
            if (!(uuid > 0 && uuid < 0xFFFFFFFF) || !ObjectFactory.isNetworkNode(uuid))
                continue
            labelsAsked += 1
            // Same priority, same worker: the serial number comes first.
            jobs.run(uuid, "GetSerialNumberJob", {}, null, 1)
            jobs.run(uuid, "GetLabelJob", {}, function(ok) {
                if (ok) labelsRead += 1; else labelsFailed += 1
            }, 1)
        }
    }

    // Lists a device by hand; `text` is its node number (decimal or 0x...).
    function addDevice(text, type) {
        var number = text.trim().toLowerCase().indexOf("0x") === 0 ? parseInt(text.trim().substring(2), 16) : parseInt(text, 10)
        if (isNaN(number) || number < 1 || number > 0xFFFFFE) {
            message(qsTr("Not a node number: %1").arg(text), true)
            return false
        }
        var shared = ObjectFactory.createObjectQml(view, type, number, true)
        if (!shared) {
            message(ObjectFactory.lastError !== "" ? ObjectFactory.lastError : qsTr("Node %1 of that kind is listed already").arg(text), true)
            return false
        }
        shared.destroy()
        message(qsTr("Added node %1").arg(text), false)
        return true
    }

    Component { id: discoverJob; BusDiscoverJob {} }
    QMLSerialPortList { id: ports }

    ColumnLayout {
        width: Math.min(view.availableWidth, 720)
        spacing: 12

        GroupBox {
            title: qsTr("Serial port")
            Layout.fillWidth: true
            RowLayout {
                anchors.fill: parent
                ComboBox {
                    id: portBox
                    objectName: "serialPort"
                    Layout.fillWidth: true
                    editable: true
                    model: ports
                    textRole: "description"
                    valueRole: "name"
                }
                Button {
                    text: qsTr("Reload")
                    onClicked: ports.reload()
                }
                Button {
                    text: qsTr("Open")
                    // A pseudo-terminal is not listed: the typed path opens too.
                    onClicked: view.openSerial(portBox.currentIndex >= 0 && portBox.editText === portBox.currentText
                                               ? portBox.currentValue : portBox.editText)
                }
            }
        }

        GroupBox {
            title: qsTr("Multicast")
            Layout.fillWidth: true
            GridLayout {
                anchors.fill: parent
                columns: 4
                Label { text: qsTr("Group") }
                TextField {
                    id: groupField
                    objectName: "mcastGroup"
                    text: "239.255.42.1"
                    validator: RegularExpressionValidator { regularExpression: /^(\d{1,3}\.){3}\d{1,3}$/ }
                }
                Label { text: qsTr("Port") }
                SpinBox {
                    id: portField
                    objectName: "mcastPort"
                    from: 1; to: 65535; value: 47001
                    editable: true
                    textFromValue: function(v) { return String(v) }
                }
                Label { text: qsTr("Bind address") }
                TextField {
                    id: bindField
                    objectName: "mcastBind"
                    text: "127.0.0.1"
                    validator: RegularExpressionValidator { regularExpression: /^(\d{1,3}\.){3}\d{1,3}$/ }
                }
                Item { Layout.fillWidth: true }
                Button {
                    text: qsTr("Open")
                    onClicked: view.openMCast(groupField.text, portField.value, bindField.text)
                }
            }
        }

        GroupBox {
            title: qsTr("Open bus")
            Layout.fillWidth: true
            ColumnLayout {
                anchors.fill: parent
                RowLayout {
                    Label {
                        objectName: "openBus"
                        Layout.fillWidth: true
                        font.bold: true
                        text: BusFactory.busUUID !== "" ? view.busText(BusFactory.busUUID) : qsTr("No bus open")
                        ToolTip.visible: openHover.containsMouse && BusFactory.busUUID !== ""
                        ToolTip.text: BusFactory.busUUID
                        MouseArea { id: openHover; anchors.fill: parent; hoverEnabled: true }
                    }
                    Button {
                        text: qsTr("Close")
                        enabled: BusFactory.busUUID !== ""
                        onClicked: BusFactory.close()
                    }
                }
                Label { text: qsTr("Opened before:"); visible: recentList.count > 0 }
                Repeater {
                    id: recentList
                    objectName: "recentBuses"
                    model: view.recentBuses.filter(function(uuid) { return uuid !== BusFactory.busUUID })
                    RowLayout {
                        Label {
                            objectName: "recentBus"
                            text: view.busText(modelData)
                            Layout.fillWidth: true
                            font.bold: modelData === BusFactory.busUUID
                        }
                        Button {
                            text: qsTr("Reopen")
                            enabled: modelData !== BusFactory.busUUID
                            onClicked: view.openUUID(modelData)
                        }
                    }
                }
            }
        }
        Label {
            objectName: "connectionError"
            visible: view.lastError !== ""
            text: view.lastError
            color: "firebrick"
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }

        GroupBox {
            title: qsTr("Discovery")
            Layout.fillWidth: true
            ColumnLayout {
                anchors.fill: parent
                RowLayout {
                    Button {
                        text: qsTr("Discover devices")
                        enabled: BusFactory.busUUID !== "" && !view.discovering
                        onClicked: view.discover()
                    }
                    ProgressBar {
                        Layout.fillWidth: true
                        indeterminate: view.discovering
                        value: view.discovering ? 0 : (view.foundCount >= 0 ? 1 : 0)
                    }
                }
                Label {
                    objectName: "labelProgress"
                    visible: view.labelsAsked > 0
                    text: view.readingLabels ? qsTr("Reading labels: %1 of %2").arg(view.labelsRead + view.labelsFailed).arg(view.labelsAsked)
                                             : view.labelsFailed > 0 ? qsTr("Labels read: %1, not answered: %2").arg(view.labelsRead).arg(view.labelsFailed)
                                                                      : qsTr("Labels read: %1").arg(view.labelsRead)
                }
                Label {
                    objectName: "discoverySummary"
                    text: view.discovering
                          ? qsTr("Searching… %1 devices listed").arg(view.deviceCount)
                          : view.foundCount < 0 ? qsTr("No discovery yet")
                          : qsTr("%1 found: %2 new, %3 already known, %4 missing")
                                .arg(view.foundCount).arg(view.newCount).arg(view.knownCount).arg(view.missingCount)
                }
            }
        }

        // A device discovery cannot find (a setting tool on its own line),
        // listed by hand by its node number and kind.
        GroupBox {
            title: qsTr("Add device")
            Layout.fillWidth: true
            RowLayout {
                anchors.fill: parent
                Label { text: qsTr("Node number") }
                TextField { id: addNode; objectName: "addNode"; placeholderText: "0x000100"; Layout.preferredWidth: 120 }
                ComboBox {
                    id: addKind
                    objectName: "addKind"
                    Layout.preferredWidth: 180
                    textRole: "text"
                    model: [{ text: qsTr("standard node"), type: 1 }, { text: qsTr("motor"), type: 2 },
                            { text: qsTr("DC motor"), type: 3 }, { text: "LRU50", type: 4 }, { text: "TX50DC", type: 5 },
                            { text: "TX30", type: 6 }, { text: qsTr("setting tool"), type: 7 }]
                }
                Button {
                    objectName: "addDevice"
                    text: qsTr("Add")
                    onClicked: view.addDevice(addNode.text, addKind.model[addKind.currentIndex].type)
                }
            }
        }
    }
}
