#include "taskparams_p.h"

#include "job.h"

#include <QDebug>

int TaskParams::toInt(const Job& job, const char* name, const char* task)
{
    bool ok = false;
    const int value = job.property(name).toInt(&ok);
    if (!ok)
        qWarning().noquote() << QStringLiteral("[%1]: %2 cannot be converted").arg(QLatin1String(task), QLatin1String(name));
    return ok ? value : 0;
}
