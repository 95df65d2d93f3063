#ifndef BUSMESSAGE_H
#define BUSMESSAGE_H

#include <QByteArray>
#include <QMetaType>

/// One frame as it travels on a bus: its raw bytes. Protocol layers wrap it
/// (a device-protocol message derives from it) and decode the bytes.
class BusMessage
{
public:
    BusMessage() = default;
    explicit BusMessage(const QByteArray& data) : m_data(data) {}
    virtual ~BusMessage() = default;
    BusMessage(const BusMessage&) = default;
    BusMessage& operator=(const BusMessage&) = default;

    QByteArray data() const { return m_data; }
    bool isEmpty() const { return m_data.isEmpty(); }
    int size() const { return m_data.size(); }
    bool operator==(const BusMessage& other) const { return m_data == other.m_data; }
    bool operator!=(const BusMessage& other) const { return m_data != other.m_data; }

protected:
    void setData(const QByteArray& data) { m_data = data; }

private:
    QByteArray m_data;
};

Q_DECLARE_METATYPE(BusMessage)

#endif // BUSMESSAGE_H
