#ifndef DEVICERECORDS_H
#define DEVICERECORDS_H

#include <QObject>
#include <QScopedPointer>
#include <QVariantMap>

class DeviceRecordsPrivate;

/// The records of one device as plain maps that QML bindings can read.
///
/// The record wrappers (`QmlStdConfigData` and its like) publish their
/// fields as dynamic properties, which QML does not see; this view fills
/// the same wrappers and copies their properties into `local`, `proxy` and
/// `runtime`, again whenever the device reports a change. Byte strings
/// (label, serial number) become text (UTF-8), so that they show and
/// compare as the user typed them.
///
///     DeviceRecords { id: records; device: shared.data }
///     Text { text: records.proxy.label || "" }
class DeviceRecords : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject* device READ device WRITE setDevice NOTIFY deviceChanged)
    Q_PROPERTY(QVariantMap local READ local NOTIFY recordsChanged)
    Q_PROPERTY(QVariantMap proxy READ proxy NOTIFY recordsChanged)
    Q_PROPERTY(QVariantMap runtime READ runtime NOTIFY recordsChanged)
    Q_PROPERTY(bool dirty READ isDirty NOTIFY recordsChanged)
    Q_PROPERTY(bool sync READ isSynced NOTIFY recordsChanged)
public:
    explicit DeviceRecords(QObject* parent = nullptr);
    ~DeviceRecords() override;

    QObject* device() const;
    /// Follows `device` (a `VRNObject`; anything else, or null, empties the maps).
    void setDevice(QObject* device);
    QVariantMap local() const;
    QVariantMap proxy() const;
    QVariantMap runtime() const;
    bool isDirty() const;
    bool isSynced() const;

public slots:
    /// Reads the device's records again.
    void update();

signals:
    void deviceChanged();
    void recordsChanged();

private:
    QScopedPointer<DeviceRecordsPrivate> d_ptr;
    Q_DECLARE_PRIVATE(DeviceRecords)
};

#endif // DEVICERECORDS_H
