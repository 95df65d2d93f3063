#ifndef BUSOBJECT_H
#define BUSOBJECT_H

#include <QObject>
#include <QPointer>

class Bus;

/// An object that talks on a bus; it forgets the bus when the bus is destroyed.
class BusObject : public QObject
{
    Q_OBJECT
public:
    explicit BusObject(Bus* bus = nullptr, QObject* parent = nullptr);
    ~BusObject() override;

    Bus* bus() const;
    void setBus(Bus* bus);

signals:
    void busChanged(Bus* bus);

private:
    QPointer<Bus> m_bus;
};

#endif // BUSOBJECT_H
