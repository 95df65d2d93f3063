#ifndef STDUPDATETASK_H
#define STDUPDATETASK_H

#include "firmwaretask.h"

class StdUpdateTaskPrivate;

/// Updates a node's firmware through its application (the standard update):
/// begin (the node answers with the block it waits for, so an update that
/// was cut off goes on from the last block the node took), every block from
/// there, end (the node checks the image digest and switches), then the
/// version reads back the package's version. The version is read first:
/// package, skipping, retries and progress as `FirmwareTask` says; the
/// frames are in PROTOCOL.md.
///
/// A node that answers a block with a checksum refusal gets it again (a
/// retry); a node that asks for another block than the one sent gets that
/// one next. Any other refusal ends the task with "Nack(...)".
class StdUpdateTask : public FirmwareTask
{
    Q_OBJECT

public:
    StdUpdateTask(Worker& worker, QObject* object, const Job& job, QObject* parent = nullptr);
    ~StdUpdateTask() override;

protected:
    StdUpdateTask(QObject* object, const Job& job, QObject* parent);

    const QMetaObject& objectClass() const override;
    void begin() override;
    void resend() override;
    bool readsVersionFirst() const override;
    bool takesNack(const VRNMessage& reply) const override;
    void onReply(const VRNMessage& reply) override;
    quint8 protocolReply() const override;

private:
    Q_DECLARE_PRIVATE(StdUpdateTask)
};

#endif // STDUPDATETASK_H
