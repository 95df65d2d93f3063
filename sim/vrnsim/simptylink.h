#ifndef SIMPTYLINK_H
#define SIMPTYLINK_H

#include "vrnframecutter.h"

#include <QObject>

class QSocketNotifier;
class SimNetwork;

/// Serves a SimNetwork on a pseudo-terminal that a library opens as a serial
/// port. The terminal ignores baud and parity; line timing is the network's.
class SimPtyLink : public QObject
{
    Q_OBJECT
public:
    explicit SimPtyLink(SimNetwork* network, QObject* parent = nullptr);
    ~SimPtyLink() override;

    bool open(QString* error);
    /// Path of the terminal's device, such as /dev/pts/3.
    QString devicePath() const { return m_path; }
    /// The bus identifier a library opens: "serial:" and the port name in upper case.
    QString identifier() const;
    qint64 droppedBytes() const { return m_cutter.droppedBytes(); }

private:
    void send(const QByteArray& frame);
    void readMaster();
    void flushWrites();

    SimNetwork* m_network;
    VRNFrameCutter m_cutter;
    QString m_path;
    QByteArray m_unwritten;
    int m_master = -1;
    int m_slave = -1;
    QSocketNotifier* m_readNotifier = nullptr;
    QSocketNotifier* m_writeNotifier = nullptr;
};

#endif // SIMPTYLINK_H
