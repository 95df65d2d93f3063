#include "qmlsharedobject.h"

class QmlSharedObjectPrivate
{
public:
    QSharedPointer<QObject> object;
};

QmlSharedObject::QmlSharedObject(const QSharedPointer<QObject>& object, QObject* parent)
    : QObject(parent)
    , d_ptr(new QmlSharedObjectPrivate{object})
{
}

QmlSharedObject::~QmlSharedObject() = default;

QObject* QmlSharedObject::data() const
{
    Q_D(const QmlSharedObject);
    return d->object.data();
}
