#ifndef REGISTRYFIXTURE_H
#define REGISTRYFIXTURE_H

// Shared set-up of the device registry tests: a fresh default connection per
// test, SQL helpers, and a counter of the statements SQLite really runs.

#include "busfactory.h"
#include "objectfactory.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTest>
#include <QVariant>

#include <sqlite3.h>

#include <cstring>

namespace RegistryFixture {

inline void initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

inline bool openDatabase(const QString& name = QStringLiteral(":memory:"))
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    db.setDatabaseName(name);
    return db.open();
}

/// Ends a test: factory first (it holds the connection), then the connection.
inline void closeAll()
{
    ObjectFactory::destroy();
    BusFactory::destroy();
    QSqlDatabase::database(QSqlDatabase::defaultConnection, false).close();
    QSqlDatabase::removeDatabase(QSqlDatabase::defaultConnection);
}

/// Runs `statement` with `values` bound in order; the query, positioned
/// before its first row.
inline QSqlQuery sql(const QString& statement, const QVariantList& values = {})
{
    QSqlQuery query(QSqlDatabase::database());
    query.prepare(statement);
    for (const QVariant& v : values)
        query.addBindValue(v);
    if (!query.exec())
        qWarning("sql failed: %s: %s", qPrintable(statement), qPrintable(query.lastError().text()));
    return query;
}

/// The first column of the first row.
inline QVariant sqlValue(const QString& statement, const QVariantList& values = {})
{
    QSqlQuery query = sql(statement, values);
    return query.next() ? query.value(0) : QVariant();
}

/// Counts the statements run on the connection whose text contains `needle`.
class StatementCounter
{
public:
    StatementCounter(const QSqlDatabase& db, const char* needle) : m_needle(needle)
    {
        const QVariant handle = db.driver()->handle();
        m_db = *static_cast<sqlite3* const*>(handle.data());
        sqlite3_trace_v2(m_db, SQLITE_TRACE_STMT, &StatementCounter::traced, this);
    }
    ~StatementCounter() { sqlite3_trace_v2(m_db, 0, nullptr, nullptr); }
    int count() const { return m_count; }
    void reset() { m_count = 0; }

private:
    static int traced(unsigned, void* self, void*, void* text)
    {
        auto counter = static_cast<StatementCounter*>(self);
        if (std::strstr(static_cast<const char*>(text), counter->m_needle))
            ++counter->m_count;
        return 0;
    }
    sqlite3* m_db = nullptr;
    const char* m_needle;
    int m_count = 0;
};

} // namespace RegistryFixture

#endif // REGISTRYFIXTURE_H
