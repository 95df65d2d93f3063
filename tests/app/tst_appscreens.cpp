// The application on a simulated network of 30 devices of every kind,
// offscreen: each main view opened and checked, and saved as a PNG under
// the build folder (screenshots/).
#include "appengine.h"
#include "appfixture.h"
#include "dts.h"
#include "../firmware/firmwarefixture.h"

#include "objectfactory.h"
#include "settings.h"
#include "simnode.h"
#include "vrn.h"

#include <QDir>
#include <QQmlApplicationEngine>
#include <QQmlContext>
#include <QQmlProperty>
#include <QQuickItem>
#include <QQuickItemGrabResult>
#include <QQuickWindow>
#include <QXmlStreamReader>
#include <QtTest>

class tst_AppScreens : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void connection();
    void devices();
    void motor();
    void actions();
    void diagnostics();
    void firmware();
    void traffic();
    void backupAndHistory();
    void stopAllOnEscape();
    void everyViewInBothThemes();
    void everyViewInGerman();
    void noQmlWarnings();

private:
    QObject* view(const char* name) const { return m_window->property(name).value<QObject*>(); }
    QObject* panel() const { return view("devicesView")->property("panel").value<QObject*>(); }
    QVariant call(QObject* object, const char* method, const QVariant& a = {}, const QVariant& b = {});
    QVariant proxy(const char* field) const { return panel()->property("proxy").toMap().value(field); }
    QVariant runtime(const char* field) const { return panel()->property("runtime").toMap().value(field); }
    int firstRowOfType(int type);
    QVariantMap values(int row) const;
    /// Selects the devices of `type`; how many there are.
    int selectType(int type);
    /// What the view's rows show in their labels named `name`, top row first.
    QStringList shown(const char* list, const char* name) const;
    /// The delegate showing `row`, scrolled into view.
    QQuickItem* rowItem(int row);
    void show(const char* name);
    void save(const QString& name);
    /// Every text the window shows now (labels, buttons, fields), visible
    /// ones only.
    QStringList visibleTexts() const;
    /// Texts that give away the code behind the screen: class and job
    /// names, camelCase keys.
    static QStringList internalNames(const QStringList& texts);
    /// Starts the window (again, on the same registry, after a language change).
    void restart();

    QTemporaryDir m_home;
    QScopedPointer<FirmwareFixture::Folder> m_firmware;
    QScopedPointer<AppFixture::Network> m_network;
    QScopedPointer<QQmlApplicationEngine> m_engine;
    QQuickWindow* m_window = nullptr;
};

void tst_AppScreens::initTestCase()
{
    AppFixture::redirectUserFolders(m_home);
    // A catalogue of a package for motors and one nobody signed that we know.
    m_firmware.reset(new FirmwareFixture::Folder);
    m_firmware->add(QStringLiteral("motor-9.0.0.bpk"), {int(VRN::NodeMotor)}, QStringLiteral("9.0.0"));
    const BpkKeys stranger = BpkKeys::generate();
    m_firmware->add(QStringLiteral("forged.bpk"), {int(VRN::NodeMotor)}, QStringLiteral("9.1.0"), 200, &stranger);
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    // The bus of the last run is reopened at start; when it fails, the
    // library's text is what the user sees.
    Settings::instance()->setValue(QStringLiteral("lastBusUUID"), QStringLiteral("serial:/dev/vrn-unplugged"));
    QString error;
    const QString log = m_home.path() + QStringLiteral("/vrnconfigtool.log");
    QVERIFY2(AppEngine::startLog(log, false, &error), qPrintable(error));
    restart();
    const QString shown = m_window->findChild<QObject*>(QStringLiteral("statusMessage"))->property("text").toString();
    QVERIFY(!BusFactory::instance()->lastError().isEmpty());
    QCOMPARE(shown, BusFactory::instance()->lastError());
    // The failure is in the message area and in the log file; the debug
    // lines are not (no --verbose).
    QVERIFY(m_engine->rootContext()->contextProperty("appLog").value<QObject*>()->property("entries").toStringList().first()
                .endsWith(shown));
    qDebug("[tst_AppScreens]: a trace");
    QFile file(log);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray written = file.readAll();
    QVERIFY2(written.contains(shown.toUtf8()), written.constData());
    QVERIFY(!written.contains("a trace"));

    m_network.reset(new AppFixture::Network(
        QStringLiteral("std:5,motor:5,dcmotor:5,lru50:4,tx50dc:4,tx30:4,settingtool:2"), 20, QStringLiteral("loopback-screens")));
    // A standard node on a motor's number: two devices, one node number.
    m_network->net.addNode(SimNode::Std, m_network->net.nodes().at(5)->number());
    QCOMPARE(m_network->net.nodes().size(), 30);
    QDir().mkpath(QStringLiteral(VRN_SCREENSHOT_DIR));
}

void tst_AppScreens::cleanupTestCase()
{
    m_engine.reset();
    m_network.reset();
    AppFixture::destroySingletons();
    m_firmware.reset();
}

QVariant tst_AppScreens::call(QObject* object, const char* method, const QVariant& a, const QVariant& b)
{
    QVariant result;
    const bool ok = b.isValid()
        ? QMetaObject::invokeMethod(object, method, Q_RETURN_ARG(QVariant, result), Q_ARG(QVariant, a), Q_ARG(QVariant, b))
        : a.isValid() ? QMetaObject::invokeMethod(object, method, Q_RETURN_ARG(QVariant, result), Q_ARG(QVariant, a))
                      : QMetaObject::invokeMethod(object, method, Q_RETURN_ARG(QVariant, result));
    if (!ok)
        qWarning("[tst_AppScreens]: no method %s", method);
    return result;
}

QVariantMap tst_AppScreens::values(int row) const
{
    QVariantMap values;
    QMetaObject::invokeMethod(m_window->property("devices").value<QObject*>(), "get",
                              Q_RETURN_ARG(QVariantMap, values), Q_ARG(int, row));
    return values;
}

int tst_AppScreens::firstRowOfType(int type)
{
    const int rows = view("devicesView")->property("deviceCount").toInt();
    for (int row = 0; row < rows; ++row) {
        if (values(row).value(QStringLiteral("type")).toInt() == type)
            return row;
    }
    return -1;
}

int tst_AppScreens::selectType(int type)
{
    QObject* selection = view("devicesView")->property("selection").value<QObject*>();
    QMetaObject::invokeMethod(selection, "setItems", Q_ARG(ObjectFactory::DevicesTableColumn, ObjectFactory::TypeColumn),
                              Q_ARG(QVariant, type));
    return selection->property("rowCount").toInt();
}

QStringList tst_AppScreens::shown(const char* list, const char* name) const
{
    // Delegates are items of the view, not its QObject children.
    QList<QQuickItem*> labels;
    QList<QQuickItem*> open{m_window->findChild<QQuickItem*>(QLatin1String(list))};
    while (!open.isEmpty()) {
        QQuickItem* item = open.takeLast();
        if (item->objectName() == QLatin1String(name) && item->isVisible())
            labels.append(item);
        open.append(item->childItems());
    }
    std::sort(labels.begin(), labels.end(), [](QQuickItem* a, QQuickItem* b) {
        return a->mapToScene({}).y() < b->mapToScene({}).y();
    });
    QStringList texts;
    for (QQuickItem* label : labels)
        texts.append(label->property("text").toString());
    return texts;
}

QQuickItem* tst_AppScreens::rowItem(int row)
{
    auto* list = view("devicesView")->property("list").value<QQuickItem*>();
    QMetaObject::invokeMethod(view("devicesView"), "showRow", Q_ARG(QVariant, row));
    QQuickItem* item = nullptr;
    const bool shown = QTest::qWaitFor([&] {
        QMetaObject::invokeMethod(list, "itemAtIndex", Q_RETURN_ARG(QQuickItem*, item), Q_ARG(int, row));
        return item && item->isVisible();
    });
    return shown ? item : nullptr;
}

void tst_AppScreens::show(const char* name)
{
    call(m_window, "showView", QString::fromLatin1(name));
    QTest::qWait(50);
}

void tst_AppScreens::save(const QString& name)
{
    QTest::qWait(100);
    // The software renderer grabs items, not offscreen windows.
    const QSharedPointer<QQuickItemGrabResult> grab = m_window->contentItem()->grabToImage();
    QVERIFY(grab);
    bool ready = false;
    connect(grab.data(), &QQuickItemGrabResult::ready, this, [&ready] { ready = true; });
    QTRY_VERIFY(ready);
    const QImage image = grab->image();
    QCOMPARE(image.size(), m_window->size());
    QVERIFY(image.save(QStringLiteral(VRN_SCREENSHOT_DIR "/") + name + QStringLiteral(".png")));
}

QStringList tst_AppScreens::visibleTexts() const
{
    QStringList texts;
    QList<QQuickItem*> open{m_window->contentItem()};
    // Popups and menus that are open live in the overlay, a child of the content item's parent.
    if (m_window->contentItem()->parentItem())
        open = {m_window->contentItem()->parentItem()};
    while (!open.isEmpty()) {
        QQuickItem* item = open.takeLast();
        if (!item->isVisible() || item->opacity() == 0)
            continue;
        const QVariant text = item->property("text");
        if (text.userType() == QMetaType::QString && !text.toString().isEmpty())
            texts.append(text.toString());
        const QVariant placeholder = item->property("placeholderText");
        if (placeholder.userType() == QMetaType::QString && !placeholder.toString().isEmpty())
            texts.append(placeholder.toString());
        open.append(item->childItems());
    }
    return texts;
}

QStringList tst_AppScreens::internalNames(const QStringList& texts)
{
    static const QRegularExpression internal(QStringLiteral(
        "\\b[a-z]+[A-Z][a-z]+\\w*\\b|\\w+(Job|Task|Object)\\b|\\bVRN[A-Z]\\w+|\\bnull\\b|undefined|NaN|\\[object"));
    QStringList found;
    for (const QString& text : texts) {
        // Bus identifiers and firmware file names are the user's own words.
        if (text.contains(QLatin1String("mcast:")) || text.contains(QLatin1String("serial:")) || text.contains(QLatin1String(".bpk")))
            continue;
        // Nor are the names of files and folders.
        if (internal.match(QString(text).remove(QRegularExpression(QStringLiteral("\\S*/\\S*")))).hasMatch())
            found.append(text);
    }
    return found;
}

void tst_AppScreens::restart()
{
    m_engine.reset(new QQmlApplicationEngine);
    QString error;
    QVERIFY2(AppEngine::start(*m_engine, QString(), &error), qPrintable(error));
    m_window = qobject_cast<QQuickWindow*>(m_engine->rootObjects().first());
    QVERIFY(m_window);
    QVERIFY(QTest::qWaitForWindowExposed(m_window));
}

void tst_AppScreens::connection()
{
    show("connection");
    QObject* connection = view("connectionView");
    QVERIFY(call(connection, "discover").toBool());
    QTRY_COMPARE_WITH_TIMEOUT(connection->property("discovering").toBool(), false, 10000);
    QCOMPARE(connection->property("foundCount").toInt(), 30);
    QCOMPARE(view("devicesView")->property("deviceCount").toInt(), 30);
    QCOMPARE(m_window->findChild<QObject*>(QStringLiteral("discoverySummary"))->property("text").toString(),
             QStringLiteral("30 found: 30 new, 0 already known, 0 missing"));
    // Serial numbers are read into the registry with the labels; on the
    // shared number either device's may answer. A setting tool is no
    // network node: nothing is read from it.
    QObject* jobs = m_window->property("jobs").value<QObject*>();
    QTRY_COMPARE_WITH_TIMEOUT(jobs->property("running").toInt(), 0, 10000);
    QMultiHash<quint32, QByteArray> serials;
    for (const SimNode* node : m_network->net.nodes())
        serials.insert(node->number(), node->serialNumber());
    for (int row = 0; row < 30; ++row) {
        const QVariantMap shown = values(row);
        if (shown.value(QStringLiteral("type")).toInt() == VRNObject::SettingTool)
            continue;
        const QByteArray serial = shown.value(QStringLiteral("serialNumber")).toByteArray();
        QVERIFY2(!serial.isEmpty() && serials.values(shown.value(QStringLiteral("nodeID")).toUInt()).contains(serial),
                 qPrintable(QStringLiteral("row %1: %2").arg(row).arg(QString::fromLatin1(serial))));
    }
    save(QStringLiteral("connection"));
    // The registry's path stays within its room in the status bar (cut in
    // the middle where the fonts make it too long: on Qt 5.15 here, not on
    // Qt 6); pointed at, it shows whole.
    auto* registry = m_window->findChild<QQuickItem*>(QStringLiteral("registryStatus"));
    QVERIFY(registry->property("contentWidth").toReal() <= registry->width() + 1);
    QVERIFY(registry->property("text").toString().endsWith(QStringLiteral("-loopback-screens.sqlite")));
    QTest::mouseMove(m_window, registry->mapToScene(QPointF(registry->width() / 2, registry->height() / 2)).toPoint());
    QTRY_VERIFY(visibleTexts().contains(QStringLiteral("Device registry of this bus: ") + ObjectFactory::instance()->registryPath()));
    save(QStringLiteral("connection-registry"));
    QTest::mouseMove(m_window, QPoint(m_window->width() / 2, m_window->height() / 2));
}

// A DC motor's panel: a label written, then read back from the device.
void tst_AppScreens::devices()
{
    show("devices");
    QObject* devicesView = view("devicesView");
    const int row = firstRowOfType(6); // a TX30: a DC motor
    QVERIFY(row >= 0);
    // Both devices on one node number are flagged, no other.
    QList<int> flagged;
    for (int r = 0; r < 30; ++r) {
        QQuickItem* item = rowItem(r);
        QVERIFY(item);
        if (item->property("duplicate").toBool())
            flagged.append(r);
    }
    QCOMPARE(flagged.size(), 2);
    QCOMPARE(values(flagged.at(0)).value(QStringLiteral("nodeID")), values(flagged.at(1)).value(QStringLiteral("nodeID")));

    // A real click on the row, where the window renders.
    QQuickItem* clicked = rowItem(row);
    QVERIFY(clicked);
    QTest::mouseClick(m_window, Qt::LeftButton, {}, clicked->mapToScene(QPointF(20, 10)).toPoint());
    QCOMPARE(devicesView->property("selectedCount").toInt(), 1);
    QTRY_VERIFY(clicked->property("selected").toBool());
    QObject* jobs = m_window->property("jobs").value<QObject*>();
    QTRY_COMPARE_WITH_TIMEOUT(jobs->property("running").toInt(), 0, 5000);
    QVERIFY(proxy("upRollingSpeed").isValid());

    QObject* labelEdit = m_window->findChild<QObject*>(QStringLiteral("labelEdit"));
    labelEdit->setProperty("text", QStringLiteral("Living room"));
    QStringList pending;
    for (const QVariant& job : panel()->property("pendingJobs").toList())
        pending.append(job.toList().value(0).toString());
    QVERIFY2(pending == QStringList{QStringLiteral("SetLabelJob")}, qPrintable(pending.join(QLatin1Char(' ')) + QStringLiteral(" %1 %2").arg(m_window->findChild<QObject*>(QStringLiteral("upSpeedEdit"))->property("value").toInt()).arg(proxy("upRollingSpeed").toInt())));
    QCOMPARE(call(panel(), "writePending").toInt(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(proxy("label").toString(), QStringLiteral("Living room"), 5000);
    panel()->setProperty("uuid", QVariant());
    call(devicesView, "clickRow", row, 0);
    QTRY_COMPARE_WITH_TIMEOUT(proxy("label").toString(), QStringLiteral("Living room"), 5000);
    QTRY_COMPARE(labelEdit->property("text").toString(), QStringLiteral("Living room"));
    save(QStringLiteral("devices"));

    // A row no device can have (the broadcast number, from an older
    // registry): marked, explained when pointed at, and no job goes to it.
    const QSharedPointer<VRNObject> forged = ObjectFactory::instance()->createObject(VRNObject::DtsStd, VRN::BroadcastNumber);
    QVERIFY(forged);
    const QVariant uuid = forged->uuid();
    int invalid = -1;
    for (int r = 0; r < 31 && invalid < 0; ++r)
        invalid = values(r).value(QStringLiteral("uuid")) == uuid ? r : -1;
    for (int r = 0; r < 31; ++r) {
        QQuickItem* item = rowItem(r);
        QVERIFY(item);
        QCOMPARE(item->property("problem").toString().isEmpty(), r != invalid);
    }
    QQuickItem* item = rowItem(invalid);
    QVERIFY(shown("deviceList", "cell4").contains(QStringLiteral("\u26A0 invalid")));
    QTest::mouseMove(m_window, item->mapToScene(QPointF(20, 10)).toPoint());
    QTRY_VERIFY(visibleTexts().contains(QStringLiteral(
        "Invalid row, its node number FFFFFF is the broadcast address, a job on it would reach every device. "
        "No job is sent to it: forget it and discover the devices again.")));
    save(QStringLiteral("devices-invalid"));
    QVariant queued;
    QVERIFY(QMetaObject::invokeMethod(jobs, "run", Q_RETURN_ARG(QVariant, queued), Q_ARG(QVariant, uuid),
                                      Q_ARG(QVariant, QStringLiteral("SetLabelJob")), Q_ARG(QVariant, QVariant()),
                                      Q_ARG(QVariant, QVariant()), Q_ARG(QVariant, QVariant()), Q_ARG(QVariant, QVariant())));
    QCOMPARE(queued.toBool(), false);
    const QStringList log = m_engine->rootContext()->contextProperty("appLog").value<QObject*>()->property("entries").toStringList();
    QVERIFY2(log.first().contains(QStringLiteral("Write label: not sent, the row is invalid: its node number FFFFFF")),
             qPrintable(log.first()));
    QVERIFY(ObjectFactory::instance()->destroyObject(uuid.toUInt()));
    QTRY_COMPARE(devicesView->property("deviceCount").toInt(), 30);
}

// The same motor moves: the position shown changes while it runs.
void tst_AppScreens::motor()
{
    QObject* jobs = m_window->property("jobs").value<QObject*>();
    QTRY_COMPARE_WITH_TIMEOUT(jobs->property("running").toInt(), 0, 5000);
    QVERIFY(runtime("posPulse").isValid());
    const int before = runtime("posPulse").toInt();
    call(panel(), "move", before > 30000 ? 0 : 1, 0);
    QTRY_VERIFY_WITH_TIMEOUT(panel()->property("watching").toBool(), 3000);
    QTRY_VERIFY_WITH_TIMEOUT(runtime("posPulse").toInt() != before, 5000);
    save(QStringLiteral("motor"));
    call(panel(), "move", 255, 0);
}

void tst_AppScreens::actions()
{
    QCOMPARE(selectType(2), 5);
    show("actions");
    QObject* actions = view("actionsView");
    QCOMPARE(call(actions, "runOnSelection", 3).toInt(), 5); // wink
    QTRY_COMPARE_WITH_TIMEOUT(actions->property("pending").toInt(), 0, 5000);
    QObject* results = actions->property("results").value<QObject*>();
    QCOMPARE(results->property("count").toInt(), 5);
    save(QStringLiteral("actions"));
    // A move of several motors asks first, in words.
    call(actions, "choose", QStringLiteral("MotorControlJob"));
    QMetaObject::invokeMethod(actions->findChild<QObject*>(QStringLiteral("runAction")), "clicked");
    QObject* ask = actions->findChild<QObject*>(QStringLiteral("askFirst"));
    QTRY_VERIFY(ask->property("opened").toBool());
    QVERIFY(visibleTexts().contains(QStringLiteral("Move up on 5 devices?")));
    QMetaObject::invokeMethod(ask, "reject");
    QTRY_VERIFY(!ask->property("visible").toBool());
}

// The motors' counters read, then their statistics reset and read back.
void tst_AppScreens::diagnostics()
{
    QCOMPARE(selectType(2), 5);
    show("diagnostics");
    QObject* diagnostics = view("diagnosticsView");
    auto counts = [&] {
        QList<int> out;
        for (QString text : shown("diagnosticRows", "counter_frameReceived"))
            out.append(text.remove(QRegularExpression(QStringLiteral("\\D"))).toInt());
        return out;
    };
    QCOMPARE(call(diagnostics, "read").toInt(), 5);
    QTRY_COMPARE_WITH_TIMEOUT(diagnostics->property("busy").toInt(), 0, 5000);
    QTRY_COMPARE(counts().size(), 5);
    const QList<int> before = counts();
    QVERIFY2(before.first() > 10, qPrintable(shown("diagnosticRows", "counter_frameReceived").first()));
    // The headings in words, with units; the motors' life counters on their own tab.
    const QStringList headings = visibleTexts();
    QVERIFY(headings.contains(QStringLiteral("Frames received")) && headings.contains(QStringLiteral("frames")));
    save(QStringLiteral("diagnostics"));
    diagnostics->setProperty("groupIndex", 2);
    QTRY_COMPARE(shown("diagnosticRows", "counter_thermalCount").size(), 5);
    for (const QString& text : shown("diagnosticRows", "counter_totalMoveCount"))
        QVERIFY2(QRegularExpression(QStringLiteral("^[\\d,]+$")).match(text).hasMatch(), qPrintable(text));
    QVERIFY(visibleTexts().contains(QStringLiteral("Thermal trips")));
    // The chart compares the counter across the five motors.
    QObject* chart = m_window->findChild<QObject*>(QStringLiteral("diagnosticChart"));
    QVERIFY(chart);
    diagnostics->setProperty("chartKey", QStringLiteral("totalMoveCount"));
    QTRY_COMPARE(chart->property("item").value<QObject*>()->property("bars").toInt(), 5);
    save(QStringLiteral("diagnostics-motor-life"));
    diagnostics->setProperty("groupIndex", 0);
    // Reset asks first, and says what it clears.
    QObject* confirm = m_window->findChild<QObject*>(QStringLiteral("confirmReset"));
    QMetaObject::invokeMethod(confirm, "open");
    QTRY_VERIFY(confirm->property("opened").toBool());
    const QString explanation = m_window->findChild<QObject*>(QStringLiteral("resetExplanation"))->property("text").toString();
    QVERIFY2(explanation.startsWith(QLatin1String("Clears on each selected device: every traffic and error counter")), qPrintable(explanation));
    save(QStringLiteral("diagnostics-reset"));
    QMetaObject::invokeMethod(confirm, "reject");

    QCOMPARE(call(diagnostics, "reset", 2).toInt(), 5);
    QTRY_COMPARE_WITH_TIMEOUT(diagnostics->property("busy").toInt(), 0, 5000);
    QTRY_VERIFY(counts().first() < before.first());
    for (int i = 0; i < 5; ++i)
        QVERIFY2(counts().at(i) < 10, qPrintable(shown("diagnosticRows", "counter_frameReceived").at(i)));
}

// The catalogue listed, the motors checked against it and updated; a node
// that no package fits shows why its update failed.
void tst_AppScreens::firmware()
{
    QCOMPARE(selectType(2), 5);
    show("firmware");
    QObject* firmware = view("firmwareView");
    QCOMPARE(firmware->property("catalogue").value<QObject*>()->property("count").toInt(), 2);
    QCOMPARE(call(firmware, "check").toInt(), 5);
    QTRY_COMPARE_WITH_TIMEOUT(firmware->property("busy").toInt(), 0, 5000);
    QTRY_COMPARE(shown("firmwareRows", "firmwareStatus").size(), 5);
    // A motor with inputs is listed as a motor; the motors' package does not fit it.
    int available = 0;
    for (const QString& text : shown("firmwareRows", "firmwareStatus")) {
        if (text.endsWith(QLatin1String(", 9.0.0 available")))
            ++available;
        else
            QVERIFY2(text.endsWith(QLatin1String(", no package fits")), qPrintable(text));
    }
    QVERIFY(available >= 3);
    save(QStringLiteral("firmware"));

    // The motors and a standard node, which no package fits.
    QObject* selection = view("devicesView")->property("selection").value<QObject*>();
    const QVariant keypad = values(firstRowOfType(1)).value(QStringLiteral("uuid"));
    QMetaObject::invokeMethod(selection, "addItems", Q_ARG(ObjectFactory::DevicesTableColumn, ObjectFactory::UuidColumn),
                              Q_ARG(QVariant, keypad));
    QCOMPARE(call(firmware, "update", false).toInt(), 6);
    QTRY_COMPARE_WITH_TIMEOUT(firmware->property("busy").toInt(), 0, 30000);
    QTRY_COMPARE(shown("firmwareRows", "firmwareStatus").size(), 6);
    const QStringList statuses = shown("firmwareRows", "firmwareStatus");
    QVERIFY2(statuses.contains(QStringLiteral("Update firmware: No firmware package fits this device")),
             qPrintable(statuses.join(QLatin1String(" / "))));
    // The motor that shares its node number with a standard node may be
    // refused by the other node, a motor with inputs refuses a motor's
    // package; every other motor is updated, and the summary counts them.
    int updated = 0;
    for (const QString& status : statuses)
        updated += status.startsWith(QLatin1String("updated ")) && status.contains(QChar(0x2192) + QStringLiteral(" 9.0.0")) ? 1 : 0;
    QVERIFY2(updated >= 3, qPrintable(statuses.join(QLatin1String(" / "))));
    QVERIFY2(firmware->property("summary").toString().startsWith(QStringLiteral("%1 updated, 0 skipped, %2 failed")
                                                                     .arg(updated).arg(6 - updated)),
             qPrintable(firmware->property("summary").toString()));
    save(QStringLiteral("firmware-updated"));
}

void tst_AppScreens::traffic()
{
    show("traffic");
    QObject* traffic = view("trafficView");
    const int all = traffic->property("count").toInt();
    QVERIFY(all > 30);
    const SimNode* node = m_network->net.nodes().first();
    m_window->findChild<QObject*>(QStringLiteral("nodeFilter"))
        ->setProperty("text", QString::number(node->number(), 16));
    QTRY_VERIFY(traffic->property("count").toInt() < all);
    QVERIFY(traffic->property("count").toInt() > 0);
    save(QStringLiteral("traffic"));
}

// Escape, from whatever view, stops every motor with one broadcast frame.
void tst_AppScreens::stopAllOnEscape()
{
    show("diagnostics");
    QSignalSpy sent(m_network->bus.data(), &Bus::messageSent);
    QTest::keyClick(m_window, Qt::Key_Escape);
    QTRY_COMPARE(sent.count(), 1);
    const VRNMessage frame(sent.first().first().value<BusMessage>());
    QCOMPARE(frame.cmd(), quint8(DTS::CtrlStopAll));
    QVERIFY(frame.isBroadcast());
    QTest::qWait(50);
    QCOMPARE(sent.count(), 1);
}

// Backup & Compare: a backup of the network, one label changed behind the
// application's back, the document opened (one difference, both values
// shown), the difference written back; the replacement dialog's preview; the
// History panel with the write.
void tst_AppScreens::backupAndHistory()
{
    show("backup");
    QObject* backup = view("backupView");
    QObject* session = backup->property("session").value<QObject*>();
    const QString file = m_home.filePath(QStringLiteral("site.json"));
    bool ok = false;
    QVERIFY(QMetaObject::invokeMethod(session, "backup", Q_RETURN_ARG(bool, ok), Q_ARG(QString, file)) && ok);
    QTRY_VERIFY_WITH_TIMEOUT(!session->property("running").toBool(), 30000);
    QVERIFY2(session->property("lastError").toString().isEmpty(), qPrintable(session->property("lastError").toString()));
    QCOMPARE(session->property("deviceCount").toInt(), 30);

    SimNode* node = m_network->net.nodes().first();
    const QByteArray label = node->label();
    node->setLabel("Moved");
    QVERIFY(QMetaObject::invokeMethod(session, "open", Q_RETURN_ARG(bool, ok), Q_ARG(QString, file), Q_ARG(bool, false)) && ok);
    QTRY_VERIFY_WITH_TIMEOUT(!session->property("running").toBool(), 30000);
    QCOMPARE(session->property("differences").toList().size(), 1);
    QCOMPARE(shown("differencesList", "documentValue"), QStringList{QLatin1Char('"') + QString::fromUtf8(label) + QLatin1Char('"')});
    QCOMPARE(shown("differencesList", "deviceValue"), QStringList{QStringLiteral("\"Moved\"")});
    save(QStringLiteral("backup"));

    QVERIFY(QMetaObject::invokeMethod(session, "apply", Q_RETURN_ARG(bool, ok), Q_ARG(QVariantList, {})) && ok);
    QTRY_VERIFY_WITH_TIMEOUT(!session->property("running").toBool(), 10000);
    QCOMPARE(node->label(), label);
    QVERIFY(session->property("summary").toString().contains(QStringLiteral("1 device(s) done, 0 failed")));

    // The first motor of the document given to the second one: a preview only.
    QVariantList inDocument;
    QMetaObject::invokeMethod(session, "documentDevices", Q_RETURN_ARG(QVariantList, inDocument));
    int oldIndex = -1;
    QString oldNode;
    for (const QVariant& d : inDocument) {
        if (oldIndex < 0 && d.toMap().value(QStringLiteral("kind")) == QLatin1String("DtsMotor")) {
            oldIndex = d.toMap().value(QStringLiteral("index")).toInt();
            oldNode = d.toMap().value(QStringLiteral("node")).toString();
        }
    }
    quint32 newUuid = 0;
    for (int r = 0; r < view("devicesView")->property("deviceCount").toInt() && !newUuid; ++r) {
        const QVariantMap v = values(r);
        if (v.value(QStringLiteral("type")).toInt() == 2 && v.value(QStringLiteral("nodeID")).toUInt() != oldNode.toUInt(nullptr, 16))
            newUuid = v.value(QStringLiteral("uuid")).toUInt();
    }
    QVERIFY(oldIndex >= 0 && newUuid);
    QObject* dialog = backup->property("replaceDialog").value<QObject*>();
    QMetaObject::invokeMethod(dialog, "open");
    QTRY_VERIFY(dialog->property("opened").toBool());
    call(dialog, "choose", oldIndex, newUuid);
    QVERIFY(call(dialog, "preview").toBool());
    QTRY_VERIFY_WITH_TIMEOUT(!session->property("running").toBool(), 10000);
    QVERIFY2(!session->property("preview").toList().isEmpty(), qPrintable(session->property("summary").toString()
                                                                          + session->property("lastError").toString()));
    save(QStringLiteral("replace-device"));
    QMetaObject::invokeMethod(dialog, "close");

    show("history");
    QObject* history = view("historyPanel");
    QMetaObject::invokeMethod(history, "refresh");
    QVariantList log;
    QMetaObject::invokeMethod(session, "history", Q_RETURN_ARG(QVariantList, log), Q_ARG(QString, QString()));
    QVERIFY(!log.isEmpty());
    QCOMPARE(log.last().toMap().value(QStringLiteral("field")).toString(), QStringLiteral("/label"));
    QCOMPARE(log.last().toMap().value(QStringLiteral("outcome")).toString(), QStringLiteral("ok"));
    QTRY_COMPARE(history->property("entries").value<QObject*>()->property("count").toInt(), log.size());
    save(QStringLiteral("history"));
}

// Every view with a mixed selection, in the light and the dark theme: the
// words on screen are the user's, and the theme changes the colours.
void tst_AppScreens::everyViewInBothThemes()
{
    QObject* selection = view("devicesView")->property("selection").value<QObject*>();
    call(view("devicesView"), "selectAll");
    QCOMPARE(selection->property("rowCount").toInt(), 30);
    const QStringList views{QStringLiteral("connection"), QStringLiteral("devices"), QStringLiteral("actions"),
                            QStringLiteral("diagnostics"), QStringLiteral("firmware"), QStringLiteral("traffic"),
                            QStringLiteral("backup"), QStringLiteral("history"), QStringLiteral("health")};
    // A job every kind cannot run: the standard nodes say why, in words.
    QCOMPARE(call(view("actionsView"), "runOnSelection", 4).toInt(), 30); // move up
    QTRY_COMPARE_WITH_TIMEOUT(view("actionsView")->property("pending").toInt(), 0, 10000);
    show("actions");
    QTRY_VERIFY2(shown("actionResults", "actionOutcome").contains(QStringLiteral("Move up: not a motor")),
                 qPrintable(shown("actionResults", "actionOutcome").join(QLatin1String(" | "))));
    for (const QString& theme : {QStringLiteral("light"), QStringLiteral("dark")}) {
        m_window->setProperty("themeChoice", theme);
        for (const QString& name : views) {
            show(qPrintable(name));
            save(name + QLatin1Char('-') + theme);
            const QStringList bad = internalNames(visibleTexts());
            QVERIFY2(bad.isEmpty(), qPrintable(name + QStringLiteral(": ") + bad.join(QLatin1String(" | "))));
        }
        // Through QML: the window's palette is a QPalette in Qt 5 and an object of QML's own in Qt 6.
        const QColor window = QQmlProperty::read(m_window, QStringLiteral("palette.window"), qmlEngine(m_window)).value<QColor>();
        QVERIFY(window.isValid());
        QCOMPARE(window.lightness() < 128, theme == QLatin1String("dark"));
    }
    // The health of every node the jobs above asked, worst first.
    show("health");
    QTRY_VERIFY(view("healthView")->property("count").toInt() >= 29);
    QVERIFY(visibleTexts().contains(QStringLiteral("Median reply")));
    m_window->setProperty("themeChoice", QStringLiteral("system"));
    QMetaObject::invokeMethod(m_window->findChild<QObject*>(QStringLiteral("about")), "open");
    QTRY_VERIFY(visibleTexts().contains(QStringLiteral("Application version " VRN_APP_VERSION)));
    QVERIFY(visibleTexts().contains(QStringLiteral("Configuration library version " VRN_APP_VERSION)));
    save(QStringLiteral("about"));
}

// The same window in German: every text that has a translation shows it.
void tst_AppScreens::everyViewInGerman()
{
    // The English texts of the interface and their German translations.
    QFile ts(QStringLiteral(VRN_TS_FILE));
    QVERIFY(ts.open(QIODevice::ReadOnly));
    QHash<QString, QString> german;
    QXmlStreamReader xml(&ts);
    QString source;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("source"))
            source = xml.readElementText();
        else if (xml.name() == QLatin1String("translation"))
            german.insert(source, xml.readElementText());
    }
    QVERIFY(german.size() > 200);
    QCOMPARE(AppEngine::installTranslations(QStringLiteral("de")), QStringLiteral("de"));
    restart();
    QObject* selection = view("devicesView")->property("selection").value<QObject*>();
    QMetaObject::invokeMethod(selection, "setItems", Q_ARG(ObjectFactory::DevicesTableColumn, ObjectFactory::TypeColumn),
                              Q_ARG(QVariant, 6));
    call(view("devicesView"), "updateShown");
    QObject* jobs = m_window->property("jobs").value<QObject*>();
    QTRY_COMPARE_WITH_TIMEOUT(jobs->property("running").toInt(), 0, 5000);
    for (const char* name : {"connection", "devices", "actions", "diagnostics", "firmware", "traffic", "backup", "history", "health"}) {
        show(name);
        if (QByteArray(name) == "diagnostics") {
            call(view("diagnosticsView"), "read");
            QTRY_COMPARE_WITH_TIMEOUT(view("diagnosticsView")->property("busy").toInt(), 0, 5000);
            QVERIFY(visibleTexts().contains(QStringLiteral("Gesendete Rahmen")));
        }
        save(QStringLiteral("%1-de").arg(QLatin1String(name)));
        QStringList english;
        for (const QString& text : visibleTexts())
            if (german.contains(text) && german.value(text) != text)
                english.append(text);
        QVERIFY2(english.isEmpty(), qPrintable(QLatin1String(name) + QStringLiteral(": ") + english.join(QLatin1String(" | "))));
    }
    const QStringList texts = visibleTexts();
    QVERIFY(texts.contains(QStringLiteral("Verbindung")));
    show("devices");
    QCOMPARE(m_window->findChild<QObject*>(QStringLiteral("syncState"))->property("text").toString(),
             QStringLiteral("Mit dem Gerät abgeglichen"));
}

// All the above is normal use: the log holds no warning of QML's own
// (binding loops, bindings on values that announce no change, type errors,
// layouts that never settle).
void tst_AppScreens::noQmlWarnings()
{
    QFile file(m_home.path() + QStringLiteral("/vrnconfigtool.log"));
    QVERIFY(file.open(QIODevice::ReadOnly | QIODevice::Text));
    QStringList found;
    static const QRegularExpression qml(QStringLiteral("qrc:/|file:/|\\bQML\\b|QQmlExpression|Binding loop|Qt Quick Layouts"));
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (qml.match(line).hasMatch())
            found.append(line);
    }
    QVERIFY2(found.isEmpty(), qPrintable(found.join(QLatin1Char('\n'))));
}

QTEST_MAIN(tst_AppScreens)
#include "tst_appscreens.moc"
