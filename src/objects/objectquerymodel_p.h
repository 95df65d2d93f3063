// Not part of the library's API: private part of ObjectQueryModel.
#ifndef OBJECTQUERYMODEL_P_H
#define OBJECTQUERYMODEL_P_H

#include "objectfactory.h"
#include "objectquerymodel.h"

#include <QSqlQuery>
#include <QVector>

class ObjectQueryModelPrivate
{
    Q_DECLARE_PUBLIC(ObjectQueryModel)
public:
    enum { PageSize = 100, PageMargin = 50 };

    ObjectQueryModelPrivate(ObjectQueryModel* q, const QSqlDatabase& db);

    void select(int offset, bool rebuild);
    void updateRowCount();
    /// Re-reads the page when `viewRow` lies outside it, centred on the row.
    void ensurePage(int viewRow);
    /// Moves the page on to start at view row `target`, which it holds:
    /// the rows it keeps stay, the rows after its last one are looked up by
    /// that row's sort key. False when it cannot.
    bool seekPage(int target);
    /// Reads the rows of `query` (run here) into the page after its kept rows.
    bool readRows(QSqlQuery& query);
    bool inPage(int viewRow) const { return viewRow >= offset && viewRow < offset + PageSize; }
    int pageRows() const { return columns ? page.size() / columns : 0; }
    /// A cell of the page, by row within the page; invalid outside it.
    QVariant cell(int pageRow, int column) const
    {
        return pageRow >= 0 && pageRow < pageRows() && column >= 0 && column < columns ? page.at(pageRow * columns + column)
                                                                                     : QVariant();
    }
    /// Model row of a view row and back: the same mirror both ways.
    int mapRow(int row) const { return sortOrder == Qt::AscendingOrder ? row : rowCount - row - 1; }
    /// The view row that holds, in the database, the row the model calls
    /// `viewRow`: between the insertion of a row in the database and the end
    /// of its announcement, the rows after it sit one further down.
    int databaseRow(int viewRow) const { return pendingInsert >= 0 && viewRow >= pendingInsert ? viewRow + 1 : viewRow; }
    int indexOf(VRNObject::UUID uuid);
    /// What `indexOf` counts, by the statement that counts every row before.
    int countIndexOf(VRNObject::UUID uuid);

    // Row positions by anchors. Counting the rows before a row walks an
    // index over every one of them; at 100,000 rows that is most of the cost
    // of a creation. So the model keeps every `AnchorSpacing`th row of the
    // sort order (integer sort keys only) with its position, and counts only
    // from the nearest anchor before the row. Creations and destructions
    // move the anchors after the row; anything else that can reorder the
    // rows drops them, and they are read again when next needed.
    enum { AnchorSpacing = 256 };
    struct Anchor
    {
        qint64 key;
        qint64 uuid;
        int rank;
        bool operator<(const Anchor& o) const { return key < o.key || (key == o.key && uuid < o.uuid); }
    };
    bool anchoredColumn() const;
    /// What the database has seen written: this connection's row changes
    /// and the commits of other connections. Anchors are good only for the
    /// stamp they were read or moved at.
    struct Stamp
    {
        qint64 changes = -1;
        qint64 version = -1;
    };
    Stamp stamp();
    /// Anchors read before a change the model did not hear of go; `expected`
    /// row changes on this connection (the one being announced) are allowed.
    void checkAnchors(int expected = 0);
    /// Row changes SQLite counts for the insert or delete of one device:
    /// the kept device count's trigger changes a row too.
    int rowChanges() const { return countKept ? 2 : 1; }
    void dropAnchors();
    void buildAnchors();
    /// The integer sort key of the row `uuid`; false for a missing row or a
    /// key that is NULL (`*null` true) or no integer.
    bool integerKey(VRNObject::UUID uuid, qint64* key, bool* null = nullptr);
    /// Row `uuid` came, after the anchors of `generation` were read: the
    /// anchors after it move down, or all are dropped when its key is
    /// neither NULL nor an integer.
    void anchorNewRow(VRNObject::UUID uuid, int generation);
    /// Moves the anchors after (key, uuid) by `delta` (a row came or went)
    /// and drops the anchor of that row itself when it went.
    void shiftAnchors(qint64 key, VRNObject::UUID uuid, int delta);
    void refreshDoublonInfo(VRN::Addr address, VRNObject::UUID known, int knownRow, bool pageFresh = false);
    QString sortColumnName() const;
    bool filtered() const { return !search.isEmpty() || kinds != 0 || group >= 0; }
    /// Stores the filter in this model's filter table and lists anew.
    void applyFilter();
    /// The condition the view's rows meet while filtered; it reads the
    /// filter's values from the filter table, never from its own text.
    QString filterCondition() const;
    /// Creates this model's temporary table `name` on first use.
    void tempTable(QString& name, const char* prefix, const char* columns);
    /// Lists the rows anew (a filtered model cannot place a single row).
    void relist();
    /// Fills the match table with the rows the filter lets through; false
    /// when more than `NarrowFilterRows` pass.
    bool collectMatches();
    enum { NarrowFilterRows = 2000 };

    ObjectQueryModel* q_ptr;
    QSqlDatabase db;
    /// The rows held, one after the other, `columns` cells each. A plain
    /// buffer rather than a query model: scrolling on keeps the rows it
    /// still shows and reads only the new ones.
    QVector<QVariant> page;
    int columns = 0;
    int offset = 0;
    int rowCount = 0;
    ObjectSelectionModel* selection = nullptr;
    ObjectFactory::DevicesTableColumn sortColumn = ObjectFactory::NodeIDColumn;
    Qt::SortOrder sortOrder = Qt::AscendingOrder;
    QString viewName;
    int pendingRemoval = -1;
    int pendingInsert = -1;
    /// The page holds exactly what an OFFSET read at `offset` gives now:
    /// only then may the next page be looked up by a row's sort key.
    bool pageExact = false;
    QSqlQuery indexQuery;
    QString indexStatement;
    QSqlQuery firstOfNode;
    QSqlQuery nextRows;
    QString nextRowsStatement;
    QVector<Anchor> anchors;
    bool anchorsBuilt = false;
    /// The database keeps the device count (ObjectFactory's DevicesCount).
    bool countKept = false;
    Stamp anchorStamp;
    QSqlQuery changesQuery;
    QSqlQuery versionQuery;
    int anchorGeneration = 0;
    QSqlQuery keyQuery;
    QSqlQuery betweenQuery;
    QString betweenStatement;
    /// The key of the row whose destruction was announced, for the anchors.
    qint64 removedKey = 0;
    bool removedKeyKnown = false;
    // The filter (see ObjectQueryModel::searchText).
    QString search;
    quint32 kinds = 0;
    int group = -1;
    QString filterTable;
    QString matchTable;
    bool narrowFilter = false;
};

#endif // OBJECTQUERYMODEL_P_H
