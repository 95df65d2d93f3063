#ifndef QMLSHAREDOBJECT_H
#define QMLSHAREDOBJECT_H

#include <QObject>
#include <QScopedPointer>
#include <QSharedPointer>

class QmlSharedObjectPrivate;

/// Hands QML an object whose lifetime shared pointers govern: the wrapper
/// holds one strong reference for as long as it lives, so QML can use
/// `data` without owning it.
///
///     return new QmlSharedObject(worker, parent);   // QML reads .data
class QmlSharedObject : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject* data READ data NOTIFY dataChanged)

public:
    explicit QmlSharedObject(const QSharedPointer<QObject>& object, QObject* parent = nullptr);
    ~QmlSharedObject() override;

    QObject* data() const;

signals:
    void dataChanged();

private:
    QScopedPointer<QmlSharedObjectPrivate> d_ptr;
    Q_DECLARE_PRIVATE(QmlSharedObject)
};

#endif // QMLSHAREDOBJECT_H
