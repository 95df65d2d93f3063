#include "qmldocumentsession.h"

#include "busfactory.h"
#include "changelog.h"
#include "commissioningreport.h"
#include "devicebackups.h"
#include "networkconfiguration.h"
#include "objectfactory.h"
#include "registrysql_p.h"

#include <QCoreApplication>
#include <QSqlQuery>
#include <QUrl>

class QmlDocumentSessionPrivate
{
public:
    enum Step { Idle, Backup, Compare, Apply, Preview, Replace, Report };

    QmlDocumentSession* q_ptr;
    NetworkConfiguration config;
    Step step = Idle;
    NetworkDocument document;
    QString fileName;
    QString target;
    QString html;
    QList<NetworkConfiguration::Difference> differences;
    QList<NetworkConfiguration::Difference> preview;
    quint32 replaceOld = 0;
    quint32 replaceNew = 0;
    int done = 0;
    int total = 0;
    QString summary;
    QString error;

    explicit QmlDocumentSessionPrivate(QmlDocumentSession* q) : q_ptr(q) {}

    bool begin(Step s)
    {
        if (step != Idle || config.isRunning())
            return setError(QmlDocumentSession::tr("busy: wait for the running step to end"));
        step = s;
        done = total = 0;
        setError(QString());
        config.setBus(BusFactory::instance()->lastBusUUID());
        config.setToolVersion(QCoreApplication::applicationVersion());
        emit q_ptr->runningChanged();
        return true;
    }
    bool setError(const QString& text)
    {
        error = text;
        emit q_ptr->errorChanged();
        return text.isEmpty();
    }
    static QList<quint32> registryDevices()
    {
        QList<quint32> uuids;
        QSqlQuery query = RegistrySql::query(ObjectFactory::instance()->database());
        if (query.exec(QStringLiteral("SELECT uuid FROM Devices ORDER BY uuid")))
            while (query.next())
                uuids << query.value(0).toUInt();
        return uuids;
    }
    QString tally() const
    {
        int ok = 0, failed = 0;
        QStringList reasons;
        for (const auto& r : config.results()) {
            if (r.ok) {
                ++ok;
            } else {
                ++failed;
                reasons << QStringLiteral("0x%1: %2").arg(r.node, 6, 16, QLatin1Char('0')).arg(r.error);
            }
        }
        QString text = QmlDocumentSession::tr("%1 device(s) done, %2 failed").arg(ok).arg(failed);
        if (!reasons.isEmpty())
            text += QStringLiteral(" (") + reasons.join(QStringLiteral("; ")) + QLatin1Char(')');
        return text;
    }
    void ended();
};

void QmlDocumentSessionPrivate::ended()
{
    QmlDocumentSession* q = q_ptr;
    const Step was = step;
    step = Idle;
    switch (was) {
    case Backup: {
        document = config.document();
        DeviceBackups::store(document);
        QString why;
        if (!document.save(target, why))
            setError(why);
        fileName = target;
        differences.clear();
        emit q->documentChanged();
        emit q->differencesChanged();
        summary = QmlDocumentSession::tr("Backup saved: %1").arg(tally());
        break;
    }
    case Compare:
        differences = config.differences();
        emit q->differencesChanged();
        summary = QmlDocumentSession::tr("%1 difference(s); %2").arg(differences.size()).arg(tally());
        break;
    case Apply:
        summary = QmlDocumentSession::tr("Applied: %1").arg(tally());
        // What the devices hold now is what the next compare starts from.
        differences.clear();
        emit q->differencesChanged();
        break;
    case Preview:
        preview = config.differences();
        emit q->previewChanged();
        summary = QmlDocumentSession::tr("%1 field(s) to write").arg(preview.size());
        break;
    case Replace: {
        const auto results = config.results();
        const bool ok = !results.isEmpty() && results.first().ok;
        QString why;
        if (ok && replaceOld && replaceOld != replaceNew && !NetworkConfiguration::takeOver(replaceOld, replaceNew, why))
            setError(why);
        summary = QmlDocumentSession::tr("Replacement: %1").arg(tally());
        preview.clear();
        emit q->previewChanged();
        break;
    }
    case Report: {
        CommissioningReport report(config.document());
        QString why;
        if ((!target.isEmpty() && !report.writePdf(target, why)) || (!html.isEmpty() && !report.writeHtml(html, why)))
            setError(why);
        summary = error.isEmpty() ? QmlDocumentSession::tr("Report written") : error;
        break;
    }
    case Idle:
        break;
    }
    emit q->runningChanged();
    emit q->finished();
}

QmlDocumentSession::QmlDocumentSession(QObject* parent)
    : QObject(parent)
    , d_ptr(new QmlDocumentSessionPrivate(this))
{
    Q_D(QmlDocumentSession);
    connect(&d->config, &NetworkConfiguration::progress, this, [this](int done, int total) {
        Q_D(QmlDocumentSession);
        d->done = done;
        d->total = total;
        emit progressChanged();
    });
    connect(&d->config, &NetworkConfiguration::finished, this, [this] { d_func()->ended(); });
}

QmlDocumentSession::~QmlDocumentSession() = default;

bool QmlDocumentSession::isRunning() const { return d_func()->step != QmlDocumentSessionPrivate::Idle; }
int QmlDocumentSession::done() const { return d_func()->done; }
int QmlDocumentSession::total() const { return d_func()->total; }
QString QmlDocumentSession::fileName() const { return d_func()->fileName; }
int QmlDocumentSession::deviceCount() const { return d_func()->document.devices.size(); }
QString QmlDocumentSession::summary() const { return d_func()->summary; }
QString QmlDocumentSession::lastError() const { return d_func()->error; }

namespace {

QVariantList toList(const QList<NetworkConfiguration::Difference>& list)
{
    QVariantList out;
    for (int i = 0; i < list.size(); ++i) {
        const auto& d = list.at(i);
        out << QVariantMap{{QStringLiteral("index"), i},
                           {QStringLiteral("uuid"), d.uuid},
                           {QStringLiteral("node"), QStringLiteral("0x%1").arg(d.node, 6, 16, QLatin1Char('0'))},
                           {QStringLiteral("field"), d.field},
                           {QStringLiteral("document"), ChangeLog::text(d.document)},
                           {QStringLiteral("device"), ChangeLog::text(d.device)}};
    }
    return out;
}

} // namespace

QVariantList QmlDocumentSession::differences() const { return toList(d_func()->differences); }
QVariantList QmlDocumentSession::preview() const { return toList(d_func()->preview); }

bool QmlDocumentSession::backup(const QString& fileName)
{
    Q_D(QmlDocumentSession);
    if (localFile(fileName).isEmpty())
        return d->setError(tr("no file chosen"));
    if (!d->begin(QmlDocumentSessionPrivate::Backup))
        return false;
    d->target = localFile(fileName);
    return d->config.backup(QmlDocumentSessionPrivate::registryDevices());
}

bool QmlDocumentSession::open(const QString& fileName, bool otherBus)
{
    Q_D(QmlDocumentSession);
    NetworkDocument document;
    QString error;
    QList<quint32> matched;
    const QString file = localFile(fileName);
    if (!NetworkDocument::load(file, document, error))
        return d->setError(error);
    if (!otherBus && document.bus != BusFactory::instance()->lastBusUUID())
        return d->setError(tr("/bus: the document is of the bus %1, not of this one").arg(document.bus));
    if (!NetworkConfiguration::matchDevices(document, matched, error))
        return d->setError(error);
    if (!d->begin(QmlDocumentSessionPrivate::Compare))
        return false;
    d->document = document;
    d->fileName = file;
    emit documentChanged();
    return d->config.compare(document);
}

bool QmlDocumentSession::apply(const QVariantList& indexes)
{
    Q_D(QmlDocumentSession);
    QList<NetworkConfiguration::Difference> chosen;
    if (indexes.isEmpty())
        chosen = d->differences;
    for (const QVariant& i : indexes) {
        if (i.toInt() >= 0 && i.toInt() < d->differences.size())
            chosen << d->differences.at(i.toInt());
    }
    if (chosen.isEmpty())
        return d->setError(tr("nothing to write"));
    if (!d->begin(QmlDocumentSessionPrivate::Apply))
        return false;
    return d->config.apply(chosen);
}

bool QmlDocumentSession::previewReplace(int documentIndex, quint32 newUuid)
{
    Q_D(QmlDocumentSession);
    if (documentIndex < 0 || documentIndex >= d->document.devices.size())
        return d->setError(tr("choose the old device from the document"));
    const QJsonObject entry = d->document.devices.at(documentIndex);
    const QSharedPointer<VRNObject> object = ObjectFactory::instance()->object(newUuid);
    if (!object || NetworkDocument::kindKey(object->type()) != entry.value(QStringLiteral("kind")).toString())
        return d->setError(tr("/kind: the new device must be of the old one's kind (%1)")
                               .arg(entry.value(QStringLiteral("kind")).toString()));
    if (!d->begin(QmlDocumentSessionPrivate::Preview))
        return false;
    d->replaceOld = NetworkConfiguration::findDevice(
        QStringLiteral("node:%1").arg(entry.value(QStringLiteral("node")).toVariant().toUInt()));
    d->replaceNew = newUuid;
    // A compare of one entry against the new device: the entry is retold as the new device's.
    NetworkDocument one;
    QJsonObject retold = entry;
    retold.insert(QStringLiteral("node"), qint64(object->address() & 0xFFFFFF));
    one.devices << retold;
    return d->config.compare(one, {newUuid});
}

bool QmlDocumentSession::confirmReplace()
{
    Q_D(QmlDocumentSession);
    if (!d->replaceNew)
        return d->setError(tr("preview the replacement first"));
    if (!d->begin(QmlDocumentSessionPrivate::Replace))
        return false;
    return d->config.apply(d->preview);
}

QVariantList QmlDocumentSession::documentDevices() const
{
    Q_D(const QmlDocumentSession);
    QVariantList out;
    for (int i = 0; i < d->document.devices.size(); ++i) {
        const QJsonObject e = d->document.devices.at(i);
        out << QVariantMap{{QStringLiteral("index"), i},
                           {QStringLiteral("node"), QStringLiteral("0x%1").arg(e.value(QStringLiteral("node")).toInt(), 6, 16, QLatin1Char('0'))},
                           {QStringLiteral("kind"), e.value(QStringLiteral("kind")).toString()},
                           {QStringLiteral("label"), e.value(QStringLiteral("label")).toString()}};
    }
    return out;
}

bool QmlDocumentSession::exportReport(const QString& pdfFile, const QString& htmlFile)
{
    Q_D(QmlDocumentSession);
    if (localFile(pdfFile).isEmpty() && localFile(htmlFile).isEmpty())
        return d->setError(tr("no file chosen"));
    if (!d->begin(QmlDocumentSessionPrivate::Report))
        return false;
    d->target = localFile(pdfFile);
    d->html = localFile(htmlFile);
    // The report tells what the devices hold now.
    return d->config.backup(QmlDocumentSessionPrivate::registryDevices());
}

QVariantList QmlDocumentSession::history(const QString& sinceIso) const
{
    QVariantList out;
    const QDateTime since = sinceIso.isEmpty() ? QDateTime() : QDateTime::fromString(sinceIso, Qt::ISODate);
    for (const ChangeLog::Entry& e : ChangeLog::entries({}, since))
        out << e.toJson().toVariantMap();
    return out;
}

QString QmlDocumentSession::localFile(const QString& urlOrPath)
{
    const QUrl url(urlOrPath);
    return url.isLocalFile() ? url.toLocalFile() : urlOrPath;
}
