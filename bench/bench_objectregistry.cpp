// The device list at scale: our paged query model against QSqlTableModel
// over the same Devices table, in the same run.
//
//     bench_objectregistry [sizes...]        (default 1000 10000 100000)
//
// Then (unless BENCH_NO_SHARED is set, e.g. under a profiler) the same at
// 100,000 rows on a registry file in write-ahead-log mode,
// as the tools share it: the models are timed while a second process writes
// labels, and the creations (with two live models) while another process
// reads pages.
//
// For each size: devices of mixed types, labels of mixed case with repeats
// and some duplicated node ids are created through createObject with a live
// query model and selection model; then each model is timed for its first
// page, a jump to a random row (median), reading every row in order and a
// change of sort column, and its growth of resident memory is printed.

#include "objectfactory.h"
#include "objectquerymodel.h"
#include "objectselectionmodel.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QSqlTableModel>
#include <QStandardPaths>

#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <unistd.h>

namespace {

const int VisibleRows = 40;
const int Jumps = 101;
const int CreatedThroughFactory = 10000;

// Heap in use, large blocks included: unlike the resident size, it falls
// when memory is freed.
double heapMiB()
{
    const struct mallinfo2 info = mallinfo2();
    return double(info.uordblks + info.hblkhd) / (1024.0 * 1024.0);
}

double millis(const std::function<void()>& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

struct Figures
{
    double firstPage = 0;
    double jumpMedian = 0;
    double readAll = 0;
    double sortChange = 0;
    double memory = 0;
};

// What a list view does, through the item-model interface only. `reach`
// makes row `row` readable (QSqlTableModel counts only the rows it fetched).
Figures measure(int size, const std::function<QAbstractItemModel*()>& open,
                const std::function<void(QAbstractItemModel*, int)>& reach, const std::function<void()>& sortByLabel,
                int roleBase)
{
    Figures f;
    QAbstractItemModel* model = nullptr;
    const double before = heapMiB();
    auto readRows = [&](int first, int count) {
        const int last = qMin(size, first + count);
        reach(model, last - 1);
        for (int row = first; row < last; ++row)
            for (int column = 0; column < 4; ++column) {
                const QModelIndex index = roleBase ? model->index(row, 0) : model->index(row, column);
                model->data(index, roleBase ? roleBase + column : Qt::DisplayRole);
            }
    };
    f.firstPage = millis([&] {
        model = open();
        readRows(0, VisibleRows);
    });
    f.readAll = millis([&] { readRows(0, size); });
    // With every row read once: what the model keeps of them.
    f.memory = heapMiB() - before;
    QRandomGenerator random(7);
    QVector<double> jumps;
    for (int i = 0; i < Jumps; ++i) {
        const int row = random.bounded(size);
        jumps.append(millis([&] { readRows(row, VisibleRows); }));
    }
    std::sort(jumps.begin(), jumps.end());
    f.jumpMedian = jumps.at(jumps.size() / 2);
    f.sortChange = millis([&] {
        sortByLabel();
        readRows(0, VisibleRows);
    });
    return f;
}

// The other process: writes a label every 20 ms ("write") or
// reads a page ("read") until it is stopped or a minute has passed.
int other(const QString& mode, const QString& file)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("other"));
    db.setDatabaseName(file);
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
    if (!db.open())
        return 1;
    QSqlQuery q(db);
    QRandomGenerator random(3);
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 60000) {
        if (mode == QLatin1String("write")) {
            q.exec(QStringLiteral("UPDATE Devices SET label = 'written %1' WHERE uuid = %2").arg(clock.elapsed()).arg(random.bounded(1, 100000)));
            // About the pace of a tool writing what the devices answer.
            QThread::msleep(20);
        } else {
            q.exec(QStringLiteral("SELECT * FROM Devices ORDER BY nodeID LIMIT 100 OFFSET %1").arg(random.bounded(90000)));
            while (q.next()) {
            }
        }
    }
    return 0;
}

// `mode` "write" or "read" in a second process on `file`; stopped with `stop`.
QProcess* startOther(const QString& mode, const QString& file)
{
    auto p = new QProcess;
    p->start(QCoreApplication::applicationFilePath(), {QStringLiteral("--other"), mode, file});
    p->waitForStarted();
    return p;
}

void stop(QProcess* p)
{
    if (!p)
        return;
    p->kill();
    p->waitForFinished();
    delete p;
}

void run(int size, const QString& file = QString())
{
    const bool shared = !file.isEmpty();
    if (shared) {
        QString error;
        if (!ObjectFactory::openRegistry(file, &error)) {
            std::fprintf(stderr, "%s\n", qPrintable(error));
            return;
        }
    } else {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
        db.setDatabaseName(QStringLiteral(":memory:"));
        db.open();
    }
    ObjectFactory* factory = ObjectFactory::instance();
    QSqlDatabase db = factory->database();

    // Past 10,000 devices the rows before the last 10,000 are inserted in
    // bulk: each creation counts the rows before the new one, so creating
    // every one of 100,000 through the factory would take minutes.
    const int created = qMin(size, CreatedThroughFactory);
    QSqlQuery bulk(db);
    bulk.exec(QStringLiteral("WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n WHERE x < %1) "
                             "INSERT INTO Devices(nodeID, type) SELECT 1 + abs(random() % 16777214), 1 + x % 6 FROM n")
                  .arg(size - created));
    // Creation with live models, as discovery does it.
    QRandomGenerator random(size);
    double createMs = 0;
    QProcess* reader = shared ? startOther(QStringLiteral("read"), file) : nullptr;
    {
        QObject owner;
        ObjectQueryModel* live = factory->createQueryModel(&owner);
        live->selectionModel();
        live->data(live->index(0, 0), ObjectQueryModel::UuidRole);
        // The tools share the file: a second list lives beside the first.
        ObjectQueryModel* second = shared ? factory->createQueryModel(&owner) : nullptr;
        if (second) {
            second->setSortOrder(Qt::DescendingOrder);
            second->data(second->index(0, 0), ObjectQueryModel::UuidRole);
        }
        QVector<unsigned> nodes;
        createMs = millis([&] {
            for (int i = 0; i < created; ++i) {
                const auto type = VRNObject::Type(1 + i % 6);
                // One device in twenty shares the node id of an earlier one.
                const bool duplicate = !nodes.isEmpty() && i % 20 == 0;
                const unsigned node = duplicate ? nodes.at(random.bounded(nodes.size())) : random.bounded(1u, 0xFFFFFFu);
                if (factory->createObject(type, node, false))
                    nodes.append(node);
            }
        });
    }
    stop(reader);
    QSqlQuery labels(db);
    labels.exec(QStringLiteral("UPDATE Devices SET label = CASE uuid % 3 WHEN 0 THEN 'Room ' WHEN 1 THEN 'room ' "
                               "ELSE 'ROOM ' END || (uuid * 7919 % %1)")
                    .arg(qMax(1, size / 3)));
    const int rows = factory->nodeAddrs().size();
    QProcess* writer = shared && qEnvironmentVariableIsEmpty("BENCH_NO_WRITER") ? startOther(QStringLiteral("write"), file) : nullptr;

    ObjectQueryModel* ours = nullptr;
    const Figures paged = measure(
        rows, [&] { return ours = new ObjectQueryModel(db); }, [](QAbstractItemModel*, int) {},
        [&] { ours->setSortBy(ObjectQueryModel::LabelRole); }, ObjectQueryModel::UuidRole);
    delete ours;

    QSqlTableModel* table = nullptr;
    const Figures qt = measure(
        rows,
        [&] {
            table = new QSqlTableModel(nullptr, db);
            table->setTable(QStringLiteral("Devices"));
            table->select();
            return table;
        },
        [](QAbstractItemModel* m, int row) {
            while (m->rowCount() <= row && m->canFetchMore(QModelIndex()))
                m->fetchMore(QModelIndex());
        },
        [&] {
            table->setSort(3, Qt::AscendingOrder);
            table->select();
        },
        0);
    delete table;
    stop(writer);

    if (shared)
        std::printf("\n%d devices (%d rows) in a registry file (write-ahead log), another process writing labels; "
                    "creating %s%d through createObject with two live models while another process reads: "
                    "%.0f ms (%.1f us each)\n",
                    size, rows, created < size ? "the last " : "", created, createMs, createMs * 1000.0 / created);
    else
        std::printf("\n%d devices (%d rows): creating %s%d through createObject with live models: %.0f ms (%.1f us each)\n",
                    size, rows, created < size ? "the last " : "", created, createMs, createMs * 1000.0 / created);
    std::printf("  %-28s %14s %16s\n", "", "ObjectQueryModel", "QSqlTableModel");
    auto line = [](const char* what, double a, double b, const char* unit) {
        std::printf("  %-28s %13.2f %s %13.2f %s\n", what, a, unit, b, unit);
    };
    line("first page", paged.firstPage, qt.firstPage, "ms");
    line("jump to a random row (med.)", paged.jumpMedian, qt.jumpMedian, "ms");
    line("read every row in order", paged.readAll, qt.readAll, "ms");
    line("change sort column", paged.sortChange, qt.sortChange, "ms");
    line("heap growth", paged.memory, qt.memory, "MiB");
    std::fflush(stdout);

    ObjectFactory::destroy();
    db = QSqlDatabase();
    QSqlDatabase::database().close();
    QSqlDatabase::removeDatabase(QSqlDatabase::defaultConnection);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // Traces of every creation would time the terminal, not the registry.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type != QtDebugMsg)
            std::fprintf(stderr, "%s\n", qPrintable(text));
    });
    if (app.arguments().value(1) == QLatin1String("--other"))
        return other(app.arguments().value(2), app.arguments().value(3));
    QStandardPaths::setTestModeEnabled(true);
    QList<int> sizes;
    for (const QString& arg : app.arguments().mid(1))
        sizes.append(arg.toInt());
    if (sizes.isEmpty())
        sizes = {1000, 10000, 100000};
    for (int size : sizes)
        run(size);
    if (!qEnvironmentVariableIsEmpty("BENCH_NO_SHARED"))
        return 0;
    QTemporaryDir dir;
    run(100000, dir.filePath(QStringLiteral("devices-bench.sqlite")));
    return 0;
}
