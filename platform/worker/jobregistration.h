#ifndef JOBREGISTRATION_H
#define JOBREGISTRATION_H

#include <QByteArray>
#include <QStringList>

class Job;
class QObject;
struct QMetaObject;

/// Makes a job class known by its class name, so that jobs can be created by
/// name. Meant as a static object, one per job class; the class needs a
/// `Q_INVOKABLE` constructor taking `(QObject* parent)`.
///
///     static const JobRegistration reg(GetLabelJob::staticMetaObject);
class JobRegistration
{
public:
    explicit JobRegistration(const QMetaObject& job);
    ~JobRegistration();

    /// A new job of the class registered as `className`, or null.
    static Job* create(const QString& className, QObject* parent = nullptr);
    /// The registered class names, sorted.
    static QStringList names();

private:
    QByteArray m_name;
    bool m_registered = false;
    Q_DISABLE_COPY(JobRegistration)
};

#endif // JOBREGISTRATION_H
