#ifndef BUS_H
#define BUS_H

#include "bushealthmodel.h"
#include "busmessage.h"
#include "buspendingcall.h"

#include <QObject>
#include <QScopedPointer>

class QIODevice;
class BusPrivate;

/// A shared medium on which one call travels at a time.
///
/// `call()` queues a request and returns its pending call; the bus writes the
/// requests one after another in submission order, and each ends with the
/// first matching reply (unicast), with every reply in the collection window
/// (broadcast), or with an error. Closing or destroying the bus ends every
/// waiting call with `BusNotAvailableError`.
///
/// Subclasses provide the transport: `open()`, `close()`, `writeFrame()`, and
/// hand every frame they read to `frameReceived()`; they also say how a
/// request is addressed (`isBroadcast`) and which frame answers it (`isReplyTo`).
class Bus : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int timeout READ timeout WRITE setTimeout)
    Q_PROPERTY(int broadcastWindow READ broadcastWindow WRITE setBroadcastWindow)
    Q_PROPERTY(int broadcastQuietTime READ broadcastQuietTime WRITE setBroadcastQuietTime)
    Q_PROPERTY(int repeats READ repeats WRITE setRepeats)
    Q_PROPERTY(BusHealthModel* health READ health CONSTANT)
    Q_PROPERTY(quint64 unmatchedCount READ unmatchedCount)
    Q_PROPERTY(quint64 retransmissionCount READ retransmissionCount)
public:
    explicit Bus(QObject* parent = nullptr);
    ~Bus() override;

    virtual bool open();
    virtual void close();
    bool isOpen() const;
    virtual QString errorString() const;
    /// The transport's I/O device (a serial port, a UDP socket); null if none.
    virtual QIODevice* ioDevice() const;

    /// Queues `message`. Nothing is reported from inside this function: on a
    /// closed bus the call ends with `BusNotAvailableError` from the event loop.
    BusPendingCall call(const BusMessage& message);

    /// Time a unicast call waits for its reply, in milliseconds (500 by default).
    int timeout() const;
    void setTimeout(int ms);
    /// Time a broadcast call collects replies, in milliseconds (1000 by default).
    int broadcastWindow() const;
    void setBroadcastWindow(int ms);
    /// When not 0, a broadcast also ends once the line has been quiet this
    /// long, counted from the request and then from each reply: devices that
    /// answer within a known time let a round end as soon as they are done.
    /// 0 (default): a broadcast always takes its whole window.
    int broadcastQuietTime() const;
    void setBroadcastQuietTime(int ms);
    /// Times a unicast request that got no reply within `timeout()` is sent
    /// again, with the same bytes, before its call ends with a timeout
    /// (2 by default, 0..5). The frame tells the node that it is a repeat
    /// (see the transport), so a node that acted on it and whose answer was
    /// lost answers again without acting twice.
    int repeats() const;
    void setRepeats(int count);
    /// Calls queued or on the wire.
    int pendingCount() const;
    /// Frames read while the bus was open that answered no call: forged,
    /// late, or meant for another tool. Counted, never given to a call.
    quint64 unmatchedCount() const;
    /// Requests sent again since the bus opened.
    quint64 retransmissionCount() const;
    /// Each node's figures since the bus opened (owned by the bus).
    BusHealthModel* health() const;

signals:
    void opened();
    void closed();
    /// Every frame handed to the transport, just before it is written.
    void messageSent(const BusMessage& message);
    /// Every frame read from the wire, valid or not, before it is matched.
    void messageReceived(const BusMessage& message);
    /// A frame of `messageReceived` that answered no call and was dropped.
    void messageUnmatched(const BusMessage& message);

protected:
    Bus(BusPrivate& dd, QObject* parent);
    /// Writes one frame; false when the transport refused it.
    virtual bool writeFrame(const BusMessage& message) = 0;
    virtual bool isBroadcast(const BusMessage& request) const = 0;
    virtual bool isReplyTo(const BusMessage& request, const BusMessage& frame) const = 0;
    /// Why `request` must not be sent (a forbidden destination); empty when
    /// it may go. A refused call ends at once with `OtherError` and the text.
    virtual QString refusal(const BusMessage& request) const;
    /// Gives a request its final bytes, once, before it first goes on the
    /// wire; repeats send the same bytes.
    virtual void stampRequest(BusMessage& request);
    /// A request on the wire has ended, answered or not (timeout, write
    /// failure, cancelled, bus gone).
    virtual void requestEnded(const BusMessage& request, bool answered);
    /// The node a unicast request goes to or a frame comes from, for the
    /// health figures; -1 when none.
    virtual qint64 nodeOf(const BusMessage& frame, bool request) const;
    /// The node as people read it.
    virtual QString nodeName(qint64 node) const;
    /// For the transport: one frame read from the wire.
    void frameReceived(const BusMessage& frame);
    /// For the transport: records the error text and reports the open state.
    void setErrorString(const QString& text);
    void setOpen(bool open);

    QScopedPointer<BusPrivate> d_ptr;

private:
    Q_DECLARE_PRIVATE(Bus)
};

#endif // BUS_H
