#include "busmessage.h"

#include <QCoreApplication>

static void registerBusMessage()
{
    qRegisterMetaType<BusMessage>("BusMessage");
}
Q_COREAPP_STARTUP_FUNCTION(registerBusMessage)
