#include "errorstate.h"

class ErrorStatePrivate
{
public:
    QString text;
};

ErrorState::ErrorState(QState* parent)
    : QState(parent)
    , d_ptr(new ErrorStatePrivate)
{
}

ErrorState::~ErrorState() = default;

QString ErrorState::errorString() const
{
    return d_func()->text;
}

void ErrorState::setErrorString(const QString& text)
{
    d_func()->text = text;
}

void ErrorState::onEntry(QEvent* event)
{
    QState::onEntry(event);
    Q_EMIT error(d_func()->text);
}
