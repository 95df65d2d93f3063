#ifndef BUSDISCOVERJOB_H
#define BUSDISCOVERJOB_H

#include "qmljob.h"

/// Finds every node on the open bus and registers it as a device; queued on
/// the bus worker. Its result is the list of the identities
/// (`VRNObject::UUID`) of the devices found, in node address order.
class BusDiscoverJob : public QmlJob
{
    Q_OBJECT
    /// The node address (`VRN::Addr`) of each entry of the result, for
    /// `ObjectFactory::settleKind` once the job finished.
    Q_PROPERTY(QVariantList answeredNodes READ answeredNodes)

public:
    Q_INVOKABLE explicit BusDiscoverJob(QObject* parent = nullptr);
    ~BusDiscoverJob() override;

    QVariantList answeredNodes() const;

private:
    Q_DISABLE_COPY(BusDiscoverJob)
};

#endif // BUSDISCOVERJOB_H
