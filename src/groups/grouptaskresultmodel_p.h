// Internal header of GroupTaskResultModel, not API: may change without notice.
#ifndef GROUPTASKRESULTMODEL_P_H
#define GROUPTASKRESULTMODEL_P_H

#include "grouptaskresultmodel.h"

#include <QHash>
#include <QVector>

class GroupTaskResultModelPrivate
{
public:
    struct Entry {
        unsigned int uuid = 0;
        Job::State state = Job::Idle;
        Job::Error error = Job::NoError;
        QString errorString;
        QVariant result;
    };

    const Entry* find(unsigned int uuid) const
    {
        const auto it = rows.constFind(uuid);
        return it == rows.constEnd() ? nullptr : &entries.at(*it);
    }

    QVector<Entry> entries;
    /// Row of each uuid in `entries`.
    QHash<unsigned int, int> rows;
};

#endif // GROUPTASKRESULTMODEL_P_H
