#ifndef SETNETWORKSTATSJOB_H
#define SETNETWORKSTATSJOB_H

#include "qmljob.h"

#include <QScopedPointer>

class SetNetworkStatsJobPrivate;

/// Resets a node's network statistics, then reads the reset counters back
/// into its runtime record.
class SetNetworkStatsJob : public QmlJob
{
    Q_OBJECT
    Q_PROPERTY(int stats READ stats WRITE setStats NOTIFY statsChanged)

public:
    /// Which counters a reset clears (the values are those the node takes).
    enum Stats { Network = 0, Errors = 1, All = 2 };
    Q_ENUM(Stats)

    Q_INVOKABLE explicit SetNetworkStatsJob(QObject* parent = nullptr);
    ~SetNetworkStatsJob() override;

    /// A `Stats` value: the traffic counters, the error counters, or both
    /// (the default). A plain integer, as QML sets it; the task refuses
    /// other values.
    int stats() const;
    void setStats(int stats);

Q_SIGNALS:
    void statsChanged(int stats);

private:
    QScopedPointer<SetNetworkStatsJobPrivate> d_ptr;
    Q_DECLARE_PRIVATE(SetNetworkStatsJob)
    Q_DISABLE_COPY(SetNetworkStatsJob)
};

#endif // SETNETWORKSTATSJOB_H
