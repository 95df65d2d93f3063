#include "firmwareloader.h"
#include "firmwareloader_p.h"

#include "settings.h"

#include <QDebug>
#include <QDir>

namespace {
const char PathKey[] = "firmwarePath";
const char KeyFileKey[] = "firmwareKeyFile";
} // namespace

void FirmwareLoaderPrivate::watch()
{
    if (!watcher.directories().isEmpty())
        watcher.removePaths(watcher.directories());
    if (!watcher.files().isEmpty())
        watcher.removePaths(watcher.files());
    if (path.isEmpty() || !QDir(path).exists())
        return;
    watcher.addPath(path);
    QStringList files;
    for (const FirmwareInfo& info : rows)
        files.append(info.path());
    if (!files.isEmpty())
        watcher.addPaths(files);
}

void FirmwareLoaderPrivate::merge(const QList<FirmwareInfo>& fresh)
{
    FirmwareLoader* q = q_ptr;
    const int before = rows.size();
    int i = 0;
    int j = 0;
    while (i < rows.size() || j < fresh.size()) {
        if (j >= fresh.size() || (i < rows.size() && rows[i].path() < fresh[j].path())) {
            q->beginRemoveRows(QModelIndex(), i, i);
            rows.removeAt(i);
            q->endRemoveRows();
        } else if (i >= rows.size() || fresh[j].path() < rows[i].path()) {
            q->beginInsertRows(QModelIndex(), i, i);
            rows.insert(i, fresh[j]);
            q->endInsertRows();
            ++i, ++j;
        } else {
            if (rows[i] != fresh[j]) {
                rows[i] = fresh[j];
                const QModelIndex at = q->index(i);
                emit q->dataChanged(at, at);
            }
            ++i, ++j;
        }
    }
    if (rows.size() != before)
        emit q->countChanged();
}

FirmwareLoader::FirmwareLoader(QObject* parent)
    : QAbstractListModel(parent)
    , d_ptr(new FirmwareLoaderPrivate(this))
{
    Q_D(FirmwareLoader);
    d->settle.setSingleShot(true);
    d->settle.setInterval(50);
    connect(&d->settle, &QTimer::timeout, this, &FirmwareLoader::reload);
    connect(&d->watcher, &QFileSystemWatcher::directoryChanged, &d->settle, qOverload<>(&QTimer::start));
    connect(&d->watcher, &QFileSystemWatcher::fileChanged, &d->settle, qOverload<>(&QTimer::start));
    connect(Settings::instance(), &Settings::settingChanged, this, [this](const QString& key) {
        Q_D(FirmwareLoader);
        if ((key == QLatin1String(PathKey) && !d->pathGiven) || (key == QLatin1String(KeyFileKey) && !d->keysGiven))
            reload();
    });
    reload();
}

FirmwareLoader::~FirmwareLoader() = default;

QString FirmwareLoader::path() const
{
    return d_func()->path;
}

void FirmwareLoader::setPath(const QString& path)
{
    Q_D(FirmwareLoader);
    d->pathGiven = true;
    if (path == d->path)
        return;
    d->path = path;
    emit pathChanged(path);
    reload();
}

void FirmwareLoader::setKeys(const BpkKeys& keys)
{
    Q_D(FirmwareLoader);
    d->keys = keys;
    d->keysGiven = true;
    reload();
}

QList<FirmwareInfo> FirmwareLoader::packages() const
{
    return d_func()->rows;
}

FirmwareInfo FirmwareLoader::at(int row) const
{
    return d_func()->rows.value(row);
}

FirmwareInfo FirmwareLoader::newestFor(int nodeType) const
{
    return newest(d_func()->rows, nodeType);
}

int FirmwareLoader::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : d_func()->rows.size();
}

QVariant FirmwareLoader::data(const QModelIndex& index, int role) const
{
    Q_D(const FirmwareLoader);
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return QVariant();
    const FirmwareInfo& info = d->rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case FileNameRole: return info.fileName();
    case PathRole: return info.path();
    case VersionRole: return info.version();
    case KindsRole: return info.kinds();
    case SizeRole: return info.size();
    case ReadableRole: return info.isReadable();
    case VerifiedRole: return info.isVerified();
    case ErrorRole: return info.error();
    case InfoRole: return QVariant::fromValue(info);
    }
    return QVariant();
}

QHash<int, QByteArray> FirmwareLoader::roleNames() const
{
    return {{PathRole, "path"}, {FileNameRole, "fileName"}, {VersionRole, "version"}, {KindsRole, "kinds"},
            {SizeRole, "size"}, {ReadableRole, "readable"}, {VerifiedRole, "verified"}, {ErrorRole, "error"},
            {InfoRole, "info"}};
}

QString FirmwareLoader::configuredPath()
{
    return Settings::instance()->value(QLatin1String(PathKey), QString()).toString();
}

BpkKeys FirmwareLoader::configuredKeys()
{
    BpkKeys keys;
    const QString file = Settings::instance()->value(QLatin1String(KeyFileKey), QString()).toString();
    if (file.isEmpty())
        return keys;
    QString error;
    if (!BpkKeys::load(file, &keys, &error))
        qWarning().noquote() << "[FirmwareLoader]:" << error;
    return keys;
}

QList<FirmwareInfo> FirmwareLoader::readFolder(const QString& folder, const QByteArray& verifyKey)
{
    QList<FirmwareInfo> out;
    if (folder.isEmpty())
        return out;
    const QDir dir(folder);
    const QStringList names = dir.entryList({QStringLiteral("*.bpk")}, QDir::Files | QDir::Readable, QDir::Name);
    for (const QString& name : names)
        out.append(FirmwareInfo::fromFile(dir.filePath(name), verifyKey));
    std::sort(out.begin(), out.end(), [](const FirmwareInfo& a, const FirmwareInfo& b) { return a.path() < b.path(); });
    return out;
}

FirmwareInfo FirmwareLoader::newest(const QList<FirmwareInfo>& packages, int nodeType)
{
    FirmwareInfo best;
    for (const FirmwareInfo& info : packages) {
        if (info.fits(nodeType) && (!best.isReadable() || info.versionKey() > best.versionKey()))
            best = info;
    }
    return best;
}

int FirmwareLoader::nodeTypeOf(quint32 address)
{
    return int(address >> 24);
}

void FirmwareLoader::reload()
{
    Q_D(FirmwareLoader);
    if (!d->pathGiven) {
        const QString configured = configuredPath();
        if (configured != d->path) {
            d->path = configured;
            emit pathChanged(configured);
        }
    }
    if (!d->keysGiven)
        d->keys = configuredKeys();
    d->merge(readFolder(d->path, d->keys.verifyKey));
    d->watch();
}
