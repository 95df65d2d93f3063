#ifndef BUSDISCOVERJOB_H
#define BUSDISCOVERJOB_H

#include "qmljob.h"

/// Finds every node on the open bus and registers it as a device; queued on
/// the bus worker. Its result is the list of the identities
/// (`VRNObject::UUID`) of the devices found, in node address order.
class BusDiscoverJob : public QmlJob
{
    Q_OBJECT

public:
    Q_INVOKABLE explicit BusDiscoverJob(QObject* parent = nullptr);
    ~BusDiscoverJob() override;

private:
    Q_DISABLE_COPY(BusDiscoverJob)
};

#endif // BUSDISCOVERJOB_H
