// Bus traffic listener: the in-memory frame model against a listener kept in
// an SQLite table under a query model. Prints figures; asserts nothing.
//
//     bench_listener [frames]     (default 100000, bound 10000)

#include "dts.h"
#include "vrnlistenermodel.h"
#include "vrnlistenerviewmodel.h"
#include "vrnmessage.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QScopeGuard>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlQueryModel>
#include <QSqlRecord>
#include <QVector>

#include <cstdio>

namespace {
const int Bound = VRNListenerModel::DefaultMaxFrames;

QVector<BusMessage> sampleFrames()
{
    const quint8 cmds[] = {DTS::GetNodeLabel, DTS::PostNodeLabel, DTS::Ack, DTS::GetMotorPosition,
                           DTS::PostMotorPosition, DTS::CtrlWink};
    QVector<BusMessage> frames;
    for (int i = 0; i < 1000; ++i) {
        VRNMessage m(cmds[i % 6], VRN::makeAddr(VRN::NodeMotor, 0x100 + i % 50), 1, VRN::AddrNode,
                     QByteArray(i % 12, char(i)));
        m.prepare();
        frames << BusMessage(m.data());
    }
    return frames;
}

/// Resident memory of the process in kB.
long residentKb()
{
    QFile f(QStringLiteral("/proc/self/statm"));
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> fields = f.readAll().split(' ');
    return fields.size() > 1 ? fields.at(1).toLong() * 4 : -1;
}

/// Reads every cell the way a view scrolling through the rows would.
double readAllCells(QAbstractItemModel& model)
{
    QElapsedTimer t;
    t.start();
    qint64 chars = 0;
    for (int r = 0; r < model.rowCount(); ++r)
        for (int c = 0; c < model.columnCount(); ++c)
            chars += model.index(r, c).data().toString().size();
    return chars > 0 ? t.nsecsElapsed() / 1e6 : 0;
}

/// The SQL alternative: one row per frame, the oldest deleted past the
/// bound, a query model refreshed after every `refreshEvery` frames.
class SqlListener
{
public:
    SqlListener()
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
        db.setDatabaseName(QStringLiteral(":memory:"));
        db.open();
        QSqlQuery(db).exec(QStringLiteral(
            "CREATE TABLE Frames(id INTEGER PRIMARY KEY, msecs INTEGER, direction INTEGER, src INTEGER,"
            " dst INTEGER, dstType INTEGER, cmd INTEGER, payload BLOB, valid INTEGER)"));
        m_insert = QSqlQuery(db);
        m_insert.prepare(QStringLiteral("INSERT INTO Frames VALUES(?,?,?,?,?,?,?,?,?)"));
        m_trim = QSqlQuery(db);
        m_trim.prepare(QStringLiteral("DELETE FROM Frames WHERE id <= ?"));
    }

    void add(const BusMessage& frame)
    {
        const VRNMessage m(frame);
        ++m_id;
        const QVariantList values{m_id, QDateTime::currentMSecsSinceEpoch(), 1, m.srcAddr(), m.dstAddr(),
                                  int(m.dstType()), int(m.cmd()), m.payload(), m.isValid()};
        for (int i = 0; i < values.size(); ++i)
            m_insert.bindValue(i, values.at(i));
        m_insert.exec();
        if (m_id > Bound) {
            m_trim.bindValue(0, m_id - Bound);
            m_trim.exec();
        }
    }

    void refresh()
    {
        model.setQuery(QStringLiteral("SELECT msecs, direction, src, dst, cmd, hex(payload), valid"
                                      " FROM Frames ORDER BY id"),
                       QSqlDatabase::database(QStringLiteral("bench")));
        while (model.canFetchMore())
            model.fetchMore();
    }

    QSqlQueryModel model;

private:
    QSqlQuery m_insert;
    QSqlQuery m_trim;
    qint64 m_id = 0;
};

void row(const char* what, double ms, int frames, long kb)
{
    std::printf("  %-44s %9.1f ms  %7.2f us/frame  %7ld kB\n", what, ms, ms * 1000.0 / frames, kb);
}
}

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const int total = argc > 1 ? QByteArray(argv[1]).toInt() : 100000;
    const QVector<BusMessage> frames = sampleFrames();
    std::printf("bus traffic listener: %d frames, bound %d rows\n", total, Bound);
    std::printf("  %-44s %12s  %16s  %10s\n", "", "total", "per frame", "memory");

    QElapsedTimer t;
    {
        VRNListenerModel bare(nullptr);
        t.start();
        for (int i = 0; i < total; ++i)
            bare.addFrame(VRNListenerModel::Received, frames.at(i % frames.size()));
        row("in-memory: record (no view)", t.nsecsElapsed() / 1e6, total, 0);
    }
    long before = residentKb();
    VRNListenerModel memory(nullptr);
    VRNListenerViewModel view(&memory);
    view.setCommandFilter(DTS::Ack); // a filter on, as the user would have
    t.start();
    for (int i = 0; i < total; ++i)
        memory.addFrame(VRNListenerModel::Received, frames.at(i % frames.size()));
    row("in-memory: record (view filtering)", t.nsecsElapsed() / 1e6, total, residentKb() - before);
    row("in-memory: read every cell", readAllCells(memory), memory.rowCount(), 0);

    for (int refreshEvery : {1000, 100}) {
        const int n = refreshEvery == 1000 ? total : qMin(total, 20000);
        before = residentKb();
        const auto dropConnection = qScopeGuard([] { QSqlDatabase::removeDatabase(QStringLiteral("bench")); });
        SqlListener sql;
        t.start();
        for (int i = 0; i < n; ++i) {
            sql.add(frames.at(i % frames.size()));
            if ((i + 1) % refreshEvery == 0)
                sql.refresh();
        }
        const QByteArray label = QByteArray("sqlite: record, model refreshed every ") + QByteArray::number(refreshEvery);
        row(label.constData(), t.nsecsElapsed() / 1e6, n, residentKb() - before);
        if (refreshEvery == 1000) {
            sql.refresh();
            row("sqlite: read every cell", readAllCells(sql.model), sql.model.rowCount(), 0);
        }
    }
    return 0;
}
