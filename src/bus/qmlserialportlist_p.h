// Internal header of QMLSerialPortList: not part of the library's API.
#ifndef QMLSERIALPORTLIST_P_H
#define QMLSERIALPORTLIST_P_H

#include "qmlserialportlist.h"

#include <functional>

/// What the list keeps of one port. Built from `QSerialPortInfo` on a real
/// machine; tests build their own, which `QSerialPortInfo` does not allow.
struct SerialPortEntry
{
    QString portName;
    QString description;
    QString systemLocation;
    bool valid = true;

    static SerialPortEntry fromInfo(const QSerialPortInfo& info);
};

class QMLSerialPortListPrivate
{
public:
    using PortSource = std::function<QList<SerialPortEntry>()>;

    /// `source` gives the ports present now; the default reads the machine's.
    explicit QMLSerialPortListPrivate(PortSource source = systemPorts);
    virtual ~QMLSerialPortListPrivate() = default;

    static QList<SerialPortEntry> systemPorts();
    QString displayText(const SerialPortEntry& entry) const;

    QMLSerialPortList* q_ptr = nullptr;
    PortSource source;
    QList<SerialPortEntry> ports;
};

#endif // QMLSERIALPORTLIST_P_H
