// The device list at scale: our paged query model against QSqlTableModel
// over the same Devices table, in the same run.
//
//     bench_objectregistry [sizes...]        (default 1000 10000 100000)
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
#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QSqlTableModel>
#include <QStandardPaths>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <unistd.h>

namespace {

const int VisibleRows = 40;
const int Jumps = 101;

double residentMiB()
{
    QFile statm(QStringLiteral("/proc/self/statm"));
    if (!statm.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> fields = statm.readAll().split(' ');
    return fields.size() > 1 ? fields.at(1).toDouble() * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0) : 0;
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
    const double before = residentMiB();
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
    QRandomGenerator random(7);
    QVector<double> jumps;
    for (int i = 0; i < Jumps; ++i) {
        const int row = random.bounded(size);
        jumps.append(millis([&] { readRows(row, VisibleRows); }));
    }
    std::sort(jumps.begin(), jumps.end());
    f.jumpMedian = jumps.at(jumps.size() / 2);
    f.readAll = millis([&] { readRows(0, size); });
    f.sortChange = millis([&] {
        sortByLabel();
        readRows(0, VisibleRows);
    });
    f.memory = residentMiB() - before;
    return f;
}

void run(int size)
{
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
        db.setDatabaseName(QStringLiteral(":memory:"));
        db.open();
    }
    ObjectFactory* factory = ObjectFactory::instance();
    QSqlDatabase db = factory->database();

    // Creation with live models, as discovery does it.
    QRandomGenerator random(size);
    double createMs = 0;
    {
        QObject owner;
        ObjectQueryModel* live = factory->createQueryModel(&owner);
        live->selectionModel();
        live->data(live->index(0, 0), ObjectQueryModel::UuidRole);
        QVector<unsigned> nodes;
        createMs = millis([&] {
            for (int i = 0; i < size; ++i) {
                const auto type = VRNObject::Type(1 + i % 6);
                // One device in twenty shares the node id of an earlier one.
                const bool duplicate = !nodes.isEmpty() && i % 20 == 0;
                const unsigned node = duplicate ? nodes.at(random.bounded(nodes.size())) : random.bounded(1u, 0xFFFFFFu);
                if (factory->createObject(type, node, false))
                    nodes.append(node);
            }
        });
    }
    QSqlQuery labels(db);
    labels.exec(QStringLiteral("UPDATE Devices SET label = CASE uuid % 3 WHEN 0 THEN 'Room ' WHEN 1 THEN 'room ' "
                               "ELSE 'ROOM ' END || (uuid * 7919 % %1)")
                    .arg(qMax(1, size / 3)));
    const int rows = factory->nodeAddrs().size();

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

    std::printf("\n%d devices (%d rows): creation through createObject with live models %.0f ms (%.1f us each)\n", size, rows,
                createMs, createMs * 1000.0 / size);
    std::printf("  %-28s %14s %16s\n", "", "ObjectQueryModel", "QSqlTableModel");
    auto line = [](const char* what, double a, double b, const char* unit) {
        std::printf("  %-28s %13.2f %s %13.2f %s\n", what, a, unit, b, unit);
    };
    line("first page", paged.firstPage, qt.firstPage, "ms");
    line("jump to a random row (med.)", paged.jumpMedian, qt.jumpMedian, "ms");
    line("read every row in order", paged.readAll, qt.readAll, "ms");
    line("change sort column", paged.sortChange, qt.sortChange, "ms");
    line("memory growth", paged.memory, qt.memory, "MiB");
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
    QStandardPaths::setTestModeEnabled(true);
    QList<int> sizes;
    for (const QString& arg : app.arguments().mid(1))
        sizes.append(arg.toInt());
    if (sizes.isEmpty())
        sizes = {1000, 10000, 100000};
    for (int size : sizes)
        run(size);
    return 0;
}
