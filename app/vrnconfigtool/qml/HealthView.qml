import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import VRNConfigTool 1.0
import "Format.js" as Format

// How each node of the open bus fares (requests, replies, retransmissions,
// timeouts, invalid frames, response times), worst first or sorted by any
// heading, and the frames and errors per second of the last minutes.
Pane {
    id: view
    readonly property var health: BusFactory.bus ? BusFactory.bus.health : null
    readonly property int count: health ? health.count : 0
    property int sortColumn: 8      // BusHealthModel.ScoreColumn: worst first
    property bool sortDescending: true
    // Totals of the last sample, and one entry per second: frames and errors.
    property var last: null
    property var samples: []
    readonly property int minutes: 5

    readonly property var columns: [
        { title: qsTr("Node"), role: "node", column: 0, chars: 14 },
        { title: qsTr("Requests"), role: "requests", column: 1, chars: 13 },
        { title: qsTr("Replies"), role: "replies", column: 2, chars: 13 },
        { title: qsTr("Repeated"), role: "retransmissions", column: 3, chars: 13 },
        { title: qsTr("No answer"), role: "timeouts", column: 4, chars: 13 },
        { title: qsTr("Invalid frames"), role: "invalidFrames", column: 5, chars: 14 },
        { title: qsTr("Median reply"), unit: qsTr("ms"), role: "medianMs", column: 6, chars: 13 },
        { title: qsTr("Slowest 5 %"), unit: qsTr("ms"), role: "p95Ms", column: 7, chars: 13 },
        { title: qsTr("Gone wrong"), unit: "%", role: "score", column: 8, chars: 12 }
    ]

    function sortBy(column) {
        sortDescending = sortColumn === column ? !sortDescending : true
        sortColumn = column
        if (health)
            health.sort(column, sortDescending ? Qt.DescendingOrder : Qt.AscendingOrder)
    }
    function cellText(role, value) {
        if (value === undefined || value === null)
            return ""
        if (role === "score")
            return Number(value * 100).toLocaleString(Qt.locale(), "f", 1)
        if ((role === "medianMs" || role === "p95Ms") && value < 0)
            return qsTr("no reply")
        return typeof value === "number" ? Number(value).toLocaleString(Qt.locale(), "f", 0) : String(value)
    }
    // Sums the rows into one sample a second: frames (requests and replies)
    // and errors (repeats, missing answers, invalid frames) since the last.
    function sample() {
        if (!health)
            return
        health.flush()
        var frames = 0, errors = 0
        for (var r = 0; r < health.count; ++r) {
            var row = health.get(r)
            frames += row.requests + row.replies
            errors += row.retransmissions + row.timeouts + row.invalidFrames
        }
        var now = { frames: frames, errors: errors }
        if (last) {
            var list = samples.slice()
            list.push({ frames: Math.max(0, frames - last.frames), errors: Math.max(0, errors - last.errors) })
            while (list.length > minutes * 60)
                list.shift()
            samples = list
        }
        last = now
    }

    Timer { interval: 1000; repeat: true; running: view.visible && view.health !== null; onTriggered: view.sample() }
    onHealthChanged: { last = null; samples = [] }
    FontMetrics { id: fm }

    ColumnLayout {
        anchors.fill: parent
        RowLayout {
            Label {
                text: view.health ? qsTr("Nodes heard on the open bus: %1").arg(view.count) : qsTr("No bus open")
            }
            Item { Layout.fillWidth: true }
            Button {
                text: qsTr("Start counting anew")
                enabled: view.health !== null
                onClicked: { view.health.clear(); view.last = null; view.samples = [] }
            }
        }
        SplitView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            orientation: Qt.Vertical
            ListView {
                id: table
                objectName: "healthRows"
                SplitView.fillHeight: true
                SplitView.minimumHeight: 120
                clip: true
                model: view.health
                headerPositioning: ListView.OverlayHeader
                ScrollBar.vertical: ScrollBar {}
                header: Rectangle {
                    z: 2
                    width: table.width
                    height: headRow.height
                    color: palette.button
                    Row {
                        id: headRow
                        Repeater {
                            model: view.columns
                            ItemDelegate {
                                width: fm.averageCharacterWidth * modelData.chars
                                padding: 4
                                contentItem: Column {
                                    Label {
                                        width: parent.width
                                        text: modelData.title + (view.sortColumn === modelData.column ? (view.sortDescending ? " \u25BC" : " \u25B2") : "")
                                        font.bold: true
                                        wrapMode: Text.WordWrap
                                    }
                                    Label { text: modelData.unit || ""; opacity: 0.7 }
                                }
                                background: Rectangle { color: parent.hovered ? palette.midlight : "transparent" }
                                onClicked: view.sortBy(modelData.column)
                            }
                        }
                    }
                }
                delegate: Row {
                    id: entry
                    readonly property var values: model
                    Repeater {
                        model: view.columns
                        Label {
                            objectName: "health_" + modelData.role
                            width: fm.averageCharacterWidth * modelData.chars
                            padding: 4
                            horizontalAlignment: index === 0 ? Text.AlignLeft : Text.AlignRight
                            rightPadding: fm.averageCharacterWidth * 2
                            text: view.cellText(modelData.role, entry.values[modelData.role])
                            color: modelData.role === "score" && entry.values.score > 0.1 ? "darkorange" : palette.text
                        }
                    }
                }
                Label {
                    anchors.centerIn: parent
                    visible: view.count === 0
                    text: qsTr("No frames counted yet: the table fills as the devices are asked.")
                    opacity: 0.7
                }
            }
            Loader {
                id: chart
                objectName: "healthChart"
                SplitView.preferredHeight: 300
                source: "HealthChart.qml"
                onLoaded: item.view = view
            }
        }
    }
}
