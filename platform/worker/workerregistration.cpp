#include "workerregistration.h"
#include "taskctor.h"

#include <QDebug>
#include <QHash>
#include <QMetaObject>

namespace {
// object class name -> job class name -> constructor
using Bindings = QHash<QByteArray, QHash<QByteArray, TaskCtor*>>;

Bindings& bindings()
{
    static Bindings table;
    return table;
}
} // namespace

WorkerRegistration::WorkerRegistration(const QMetaObject& object, const QMetaObject& job, TaskCtor* ctor)
    : m_object(object.className())
    , m_job(job.className())
    , m_ctor(ctor)
{
    TaskCtor*& slot = bindings()[m_object][m_job];
    if (slot)
        qWarning().noquote() << "[WorkerRegistration]:" << m_job << "on" << m_object << "is bound twice, the later binding wins";
    slot = ctor;
}

WorkerRegistration::~WorkerRegistration()
{
    auto it = bindings().find(m_object);
    if (it != bindings().end() && it->value(m_job) == m_ctor.data())
        it->remove(m_job);
}

TaskCtor* WorkerRegistration::find(const QMetaObject& object, const QMetaObject& job)
{
    const QByteArray jobName(job.className());
    for (const QMetaObject* mo = &object; mo; mo = mo->superClass()) {
        if (TaskCtor* ctor = bindings().value(mo->className()).value(jobName))
            return ctor;
    }
    return nullptr;
}

QStringList WorkerRegistration::jobNames(const QMetaObject& object)
{
    QStringList names;
    for (const QMetaObject* mo = &object; mo; mo = mo->superClass()) {
        const QHash<QByteArray, TaskCtor*> jobs = bindings().value(mo->className());
        for (auto it = jobs.cbegin(); it != jobs.cend(); ++it) {
            if (it.value() && !names.contains(QString::fromLatin1(it.key())))
                names.append(QString::fromLatin1(it.key()));
        }
    }
    names.sort();
    return names;
}
