#ifndef FIRMWARELOADER_H
#define FIRMWARELOADER_H

#include "firmwareinfo.h"

#include <QAbstractListModel>
#include <QScopedPointer>

struct BpkKeys;
class FirmwareLoaderPrivate;

/// The catalogue of firmware packages: one row per "*.bpk" file of the
/// folder named by the setting "firmwarePath", sorted by file name, with a
/// `FirmwareInfo` per row. The loader follows the folder: files added,
/// replaced or removed, and a new "firmwarePath", update the rows (inserted,
/// changed and removed rows, never a reset), so a view keeps its place.
///
/// Signatures are checked with the keys of the file named by the setting
/// "firmwareKeyFile" (see `BpkKeys`), unless `setKeys()` gave others. A
/// package whose signature does not verify is listed, not offered:
/// `newestFor()` skips it.
///
/// Roles for QML: path, fileName, version, kinds, size, readable, verified,
/// error, and info (the whole `FirmwareInfo`).
class FirmwareLoader : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(QString path READ path WRITE setPath NOTIFY pathChanged)
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)

public:
    enum Roles {
        PathRole = Qt::UserRole + 1,
        FileNameRole,
        VersionRole,
        KindsRole,
        SizeRole,
        ReadableRole,
        VerifiedRole,
        ErrorRole,
        InfoRole
    };
    Q_ENUM(Roles)

    explicit FirmwareLoader(QObject* parent = nullptr);
    ~FirmwareLoader() override;

    /// The folder listed; "firmwarePath" until `setPath()` names another.
    QString path() const;
    void setPath(const QString& path);
    void setKeys(const BpkKeys& keys);

    QList<FirmwareInfo> packages() const;
    Q_INVOKABLE FirmwareInfo at(int row) const;
    /// The newest verified package for `nodeType`; an invalid (unreadable)
    /// info when none fits.
    Q_INVOKABLE FirmwareInfo newestFor(int nodeType) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// The folder of the setting "firmwarePath" (empty when unset).
    static QString configuredPath();
    /// The keys of the file named by the setting "firmwareKeyFile"; empty
    /// keys (and a warning) when it is unset or unreadable.
    static BpkKeys configuredKeys();
    /// Reads every package of `folder`, sorted by file name.
    static QList<FirmwareInfo> readFolder(const QString& folder, const QByteArray& verifyKey);
    /// The newest of `packages` that fits `nodeType`; invalid when none.
    static FirmwareInfo newest(const QList<FirmwareInfo>& packages, int nodeType);
    /// The node type a package must name to fit the device at `address`:
    /// the type of the address itself, never a kind it shares with others
    /// (a motor with inputs takes no plain motor's package). The one place
    /// that decides fit for the check, the updates and the views.
    Q_INVOKABLE static int nodeTypeOf(quint32 address);

public Q_SLOTS:
    /// Reads the folder again and updates the rows that changed.
    void reload();

Q_SIGNALS:
    void pathChanged(const QString& path);
    void countChanged();

private:
    Q_DECLARE_PRIVATE(FirmwareLoader)
    QScopedPointer<FirmwareLoaderPrivate> d_ptr;
};

#endif // FIRMWARELOADER_H
