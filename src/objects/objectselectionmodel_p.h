// Not part of the library's API: private part of ObjectSelectionModel.
#ifndef OBJECTSELECTIONMODEL_P_H
#define OBJECTSELECTIONMODEL_P_H

#include "objectselectionmodel.h"

#include <QSqlQuery>

class ObjectSelectionModelPrivate
{
    Q_DECLARE_PUBLIC(ObjectSelectionModel)
public:
    ObjectSelectionModelPrivate(ObjectSelectionModel* q, const QSqlDatabase& db);

    /// Runs a statement over the selection with the criteria bound; warns
    /// with `failure` and the error text when it fails.
    bool run(QSqlQuery& query, const QString& statement, const QVariant& criteria, const char* failure);
    bool clearTable();
    void insertMatching(ObjectFactory::DevicesTableColumn column, const QVariant& criteria);
    /// Recomputes row count, selected type and node id after a change,
    /// inside one model reset.
    /// Reads the row count; true when it changed (the caller announces it).
    bool updateRowCount();
    void updateSelectedType();
    void updateSelectedNodeId();

    ObjectSelectionModel* q_ptr;
    QSqlDatabase db;
    QString table;
    QString deviceTable = QStringLiteral("Devices");
    mutable QSqlQuery membership;
    unsigned rowCount = 0;
    VRNObject::Type selectedType = VRNObject::Type(1);
    /// The selected devices' closest common class is the root class.
    bool sharesNoKind = false;
    VRN::Addr selectedNodeId = 0;
};

#endif // OBJECTSELECTIONMODEL_P_H
