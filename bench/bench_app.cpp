// The application's device list at scale, offscreen: with a registry of
// 100,000 devices (or the sizes given), the time from start to the first
// frame that shows rows, and the time of a jump to the end of the list (and
// back to the top) until the frame that shows it, the frames of scrolling
// through it a screen at a time, of each key typed into the search field,
// and of selecting every row with the panel of the selection; the check of
// every row before a job goes to all of them.
//
//     bench_app [sizes...]        (default 100000)

#include "appengine.h"
#include "objectfactory.h"

#include <QElapsedTimer>
#include <QApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

// Runs the event loop until `done` holds after a frame was presented; the
// milliseconds since `timer` started, or -1 after 10 s.
double untilFrame(QQuickWindow* window, const QElapsedTimer& timer, const std::function<bool()>& done)
{
    bool swapped = false;
    const auto c = QObject::connect(window, &QQuickWindow::frameSwapped, [&] { swapped = done(); });
    while (!swapped && timer.elapsed() < 10000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    QObject::disconnect(c);
    return swapped ? double(timer.nsecsElapsed()) / 1e6 : -1;
}

double median(QVector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.at(v.size() / 2);
}

void fill(int size)
{
    QSqlQuery bulk(ObjectFactory::instance()->database());
    bulk.exec(QStringLiteral("DELETE FROM Devices"));
    bulk.exec(QStringLiteral("WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n WHERE x < %1) "
                             "INSERT INTO Devices(nodeID, type, label) SELECT 1 + abs(random() % 16777214), "
                             "1 + x % 6, 'Device ' || x FROM n")
                  .arg(size));
}

void run(int size)
{
    fill(size);
    QElapsedTimer timer;
    timer.start();
    QQmlApplicationEngine engine;
    QString error;
    if (!AppEngine::start(engine, QString(), &error)) {
        std::printf("bench_app: %s\n", qPrintable(error));
        return;
    }
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().first());
    QObject* devicesView = window->property("devicesView").value<QObject*>();
    auto* list = devicesView->property("list").value<QQuickItem*>();
    const double firstRows = untilFrame(window, timer, [&] { return list->property("count").toInt() > 0; });
    const int rows = list->property("count").toInt();

    QVector<double> toEnd, toTop;
    for (int i = 0; i < 11; ++i) {
        QElapsedTimer jump;
        jump.start();
        QMetaObject::invokeMethod(list, "positionViewAtEnd");
        toEnd.append(untilFrame(window, jump, [&] { return list->property("atYEnd").toBool(); }));
        jump.restart();
        QMetaObject::invokeMethod(list, "positionViewAtBeginning");
        toTop.append(untilFrame(window, jump, [&] { return list->property("atYBeginning").toBool(); }));
    }
    // Scrolling: the view moved by one screen at a time, from the top
    // through the middle of the list, each step until its frame.
    QVector<double> steps;
    const double screen = list->height();
    for (int i = 0; i < 200; ++i) {
        QElapsedTimer step;
        step.start();
        const double target = list->property("contentY").toDouble() + screen;
        list->setProperty("contentY", target);
        steps.append(untilFrame(window, step, [] { return true; }));
    }
    // Search: the text typed one key at a time, each key until the frame
    // that shows the list it leaves.
    auto* search = devicesView->property("searchField").value<QQuickItem*>();
    QVector<double> keys;
    const QString typed = QStringLiteral("device 4242");
    for (int round = 0; round < 3; ++round) {
        for (int i = 1; i <= typed.size(); ++i) {
            QElapsedTimer key;
            key.start();
            search->setProperty("text", typed.left(i));
            keys.append(untilFrame(window, key, [] { return true; }));
        }
        QElapsedTimer key;
        key.start();
        search->setProperty("text", QString());
        keys.append(untilFrame(window, key, [&] { return list->property("count").toInt() == rows; }));
    }
    // Select all, then the panel of the selection until its frame.
    QObject* panel = devicesView->property("panel").value<QObject*>();
    QVector<double> selectAll;
    for (int i = 0; i < 5; ++i) {
        QMetaObject::invokeMethod(devicesView->property("selection").value<QObject*>(), "clear");
        untilFrame(window, timer, [] { return true; });
        QElapsedTimer all;
        all.start();
        QMetaObject::invokeMethod(devicesView, "selectAll");
        selectAll.append(untilFrame(window, all, [&] { return panel->property("selectedCount").toInt() == rows; }));
    }
    // The rows a job for every device is checked against before it is sent.
    QVariantList everyDevice;
    QSqlQuery ids(ObjectFactory::instance()->database());
    ids.exec(QStringLiteral("SELECT uuid FROM Devices"));
    while (ids.next())
        everyDevice.append(ids.value(0));
    QElapsedTimer check;
    check.start();
    const int invalid = ObjectFactory::instance()->invalidDevices(everyDevice).size();
    const double checked = check.nsecsElapsed() / 1e6;
    std::printf("%7d devices: rows checked before a job on all of them %.1f ms (%d invalid)\n", size, checked, invalid);
    std::printf("%7d devices: first rows shown %.0f ms after start (target < 300 ms, %d rows listed); "
                "jump to the end %.1f ms median, max %.1f (target < 50 ms); back to the top %.1f ms median; "
                "scrolling by a screen %.1f ms per frame median, max %.1f; "
                "search keystroke %.1f ms median, max %.1f (target < 100 ms); "
                "select all and open the panel %.1f ms median, max %.1f (target < 200 ms)\n",
                size, firstRows, rows, median(toEnd), *std::max_element(toEnd.begin(), toEnd.end()), median(toTop), median(steps),
                *std::max_element(steps.begin(), steps.end()), median(keys), *std::max_element(keys.begin(), keys.end()),
                median(selectAll), *std::max_element(selectAll.begin(), selectAll.end()));
}

} // namespace

int main(int argc, char* argv[])
{
    QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.path() + QStringLiteral("/config")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(home.path() + QStringLiteral("/data")));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setSceneGraphBackend(QStringLiteral("software"));
    QApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QList<int> sizes;
    for (int i = 1; i < argc; ++i)
        sizes.append(QString::fromLatin1(argv[i]).toInt());
    if (sizes.isEmpty())
        sizes.append(100000);
    for (int size : sizes)
        run(size);
    return 0;
}
