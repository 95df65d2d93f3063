#include "simptylink.h"

#include "simnetwork.h"

#include <QDebug>
#include <QSerialPort>
#include <QSocketNotifier>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace {
QString lastError(const char* what)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(what), QString::fromLocal8Bit(std::strerror(errno)));
}
} // namespace

SimPtyLink::SimPtyLink(SimNetwork* network, QObject* parent)
    : QObject(parent), m_network(network)
{
    connect(network, &SimNetwork::frameOut, this, &SimPtyLink::send);
}

SimPtyLink::~SimPtyLink()
{
    if (m_slave >= 0)
        ::close(m_slave);
    if (m_master >= 0)
        ::close(m_master);
}

bool SimPtyLink::open(QString* error)
{
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0) {
        *error = lastError("cannot open a pseudo-terminal");
        return false;
    }
    const char* name = ::ptsname(m_master);
    if (!name) {
        *error = lastError("cannot name the pseudo-terminal");
        return false;
    }
    m_path = QString::fromLocal8Bit(name);
    // Holding the other end open keeps the master readable (no hang-up) while
    // no client has the port open, and sets raw mode before any client comes.
    m_slave = ::open(name, O_RDWR | O_NOCTTY);
    termios tio;
    if (m_slave < 0 || ::tcgetattr(m_slave, &tio) != 0) {
        *error = lastError("cannot set up the pseudo-terminal");
        return false;
    }
    ::cfmakeraw(&tio);
    ::tcsetattr(m_slave, TCSANOW, &tio);

    m_readNotifier = new QSocketNotifier(m_master, QSocketNotifier::Read, this);
    connect(m_readNotifier, &QSocketNotifier::activated, this, &SimPtyLink::readMaster);
    m_writeNotifier = new QSocketNotifier(m_master, QSocketNotifier::Write, this);
    m_writeNotifier->setEnabled(false);
    connect(m_writeNotifier, &QSocketNotifier::activated, this, &SimPtyLink::flushWrites);
    return true;
}

QString SimPtyLink::identifier() const
{
    QSerialPort port;
    port.setPortName(m_path);
    return QStringLiteral("serial:") + port.portName().toUpper();
}

void SimPtyLink::send(const QByteArray& frame)
{
    m_unwritten.append(frame);
    flushWrites();
}

void SimPtyLink::flushWrites()
{
    while (!m_unwritten.isEmpty()) {
        const ssize_t n = ::write(m_master, m_unwritten.constData(), size_t(m_unwritten.size()));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            if (errno != EAGAIN)
                qWarning().noquote() << "[SimPtyLink]:" << lastError("write failed");
            break;
        }
        m_unwritten.remove(0, int(n));
    }
    m_writeNotifier->setEnabled(!m_unwritten.isEmpty());
}

void SimPtyLink::readMaster()
{
    char buffer[512];
    for (;;) {
        const ssize_t n = ::read(m_master, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        const QList<QByteArray> frames = m_cutter.feed(QByteArray(buffer, int(n)));
        for (const QByteArray& frame : frames)
            m_network->frameIn(frame);
    }
}
