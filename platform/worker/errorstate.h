#ifndef ERRORSTATE_H
#define ERRORSTATE_H

#include <QScopedPointer>
#include <QState>

class ErrorStatePrivate;

/// The state a machine enters when it gives up: it keeps the error that
/// ended the work and announces it with `error()` on entry.
///
///     auto* failed = new ErrorState(root);
///     connect(failed, &ErrorState::error, this, &Updater::fail);
///     failed->setErrorString(tr("Timeout error"));  // before entering it
class ErrorState : public QState
{
    Q_OBJECT
    Q_PROPERTY(QString errorString READ errorString WRITE setErrorString)

public:
    explicit ErrorState(QState* parent = nullptr);
    ~ErrorState() override;

    QString errorString() const;
    void setErrorString(const QString& text);

Q_SIGNALS:
    /// On every entry, with `errorString()`.
    void error(const QString& text);

protected:
    void onEntry(QEvent* event) override;

private:
    QScopedPointer<ErrorStatePrivate> d_ptr;
    Q_DECLARE_PRIVATE(ErrorState)
    Q_DISABLE_COPY(ErrorState)
};

#endif // ERRORSTATE_H
