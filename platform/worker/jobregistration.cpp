#include "jobregistration.h"
#include "job.h"

#include <QDebug>
#include <QHash>
#include <QMetaObject>

namespace {
QHash<QByteArray, const QMetaObject*>& jobClasses()
{
    static QHash<QByteArray, const QMetaObject*> table;
    return table;
}
} // namespace

JobRegistration::JobRegistration(const QMetaObject& job)
    : m_name(job.className())
{
    if (!job.inherits(&Job::staticMetaObject)) {
        qWarning().noquote() << "[JobRegistration]:" << m_name << "is not a Job class";
        return;
    }
    if (jobClasses().contains(m_name)) {
        qWarning().noquote() << "[JobRegistration]:" << m_name << "is registered already";
        return;
    }
    jobClasses().insert(m_name, &job);
    m_registered = true;
}

JobRegistration::~JobRegistration()
{
    if (m_registered)
        jobClasses().remove(m_name);
}

Job* JobRegistration::create(const QString& className, QObject* parent)
{
    const QMetaObject* mo = jobClasses().value(className.toLatin1());
    if (!mo) {
        qWarning().noquote() << "[JobRegistration]: unknown job class" << className;
        return nullptr;
    }
    Job* job = qobject_cast<Job*>(mo->newInstance(Q_ARG(QObject*, parent)));
    if (!job)
        qWarning().noquote() << "[JobRegistration]:" << className << "has no invokable (QObject* parent) constructor";
    return job;
}

QStringList JobRegistration::names()
{
    QStringList list;
    for (auto it = jobClasses().cbegin(); it != jobClasses().cend(); ++it)
        list.append(QString::fromLatin1(it.key()));
    list.sort();
    return list;
}
