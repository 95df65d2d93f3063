#include "commissioningreport.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QMap>
#include <QPageLayout>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTextDocument>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("CommissioningReport", text);
}

QString esc(const QString& text)
{
    return text.toHtmlEscaped();
}

QString nodeText(qint64 node)
{
    return QStringLiteral("0x%1").arg(node, 6, 16, QLatin1Char('0'));
}

QString kindTitle(const QString& kind)
{
    static const QHash<QString, const char*> names{
        {QStringLiteral("DtsStd"), QT_TRANSLATE_NOOP("CommissioningReport", "Standard nodes")},
        {QStringLiteral("DtsMotor"), QT_TRANSLATE_NOOP("CommissioningReport", "Motors")},
        {QStringLiteral("DtsDcMotor"), QT_TRANSLATE_NOOP("CommissioningReport", "DC motors")},
        {QStringLiteral("LRU50"), QT_TRANSLATE_NOOP("CommissioningReport", "LRU50 motors")},
        {QStringLiteral("TX50DC"), QT_TRANSLATE_NOOP("CommissioningReport", "TX50DC motors")},
        {QStringLiteral("TX30"), QT_TRANSLATE_NOOP("CommissioningReport", "TX30 motors")},
        {QStringLiteral("SettingTool"), QT_TRANSLATE_NOOP("CommissioningReport", "Setting tools")}};
    return names.contains(kind) ? tr(names.value(kind)) : kind;
}

// A section's value for people; "not read" where the backup could not read it.
QString shown(const QJsonObject& entry, const QString& section)
{
    const QJsonArray unread = entry.value(QStringLiteral("unread")).toArray();
    if (unread.contains(section) || !entry.contains(section))
        return unread.contains(section) ? tr("not read") : QString();
    const QJsonValue v = entry.value(section);
    if (section == QLatin1String("groups")) {
        QStringList groups;
        for (const QJsonValue& g : v.toArray())
            if (g.toInt() != 0)
                groups << nodeText(g.toVariant().toLongLong());
        return groups.isEmpty() ? tr("none") : groups.join(QLatin1Char(' '));
    }
    if (section == QLatin1String("limits")) {
        const QJsonObject l = v.toObject();
        auto one = [](const QJsonValue& p) { return p.isNull() ? tr("not set") : QString::number(p.toInt()); };
        return tr("up %1, down %2").arg(one(l.value(QStringLiteral("up"))), one(l.value(QStringLiteral("down"))));
    }
    if (section == QLatin1String("ips")) {
        QStringList ips;
        const QJsonArray a = v.toArray();
        for (int i = 0; i < a.size(); ++i)
            if (!a.at(i).isNull())
                ips << QStringLiteral("%1: %2").arg(i + 1).arg(a.at(i).toInt());
        return ips.isEmpty() ? tr("none") : ips.join(QStringLiteral(", "));
    }
    if (section == QLatin1String("speed")) {
        const QJsonObject s = v.toObject();
        return tr("up %1, down %2, slow %3").arg(s.value(QStringLiteral("up")).toInt())
            .arg(s.value(QStringLiteral("down")).toInt()).arg(s.value(QStringLiteral("slow")).toInt());
    }
    if (section == QLatin1String("ramp")) {
        const QJsonObject r = v.toObject();
        auto one = [](const QJsonObject& x) {
            return x.value(QStringLiteral("on")).toBool() ? QString::number(x.value(QStringLiteral("value")).toInt()) : tr("off");
        };
        return tr("start %1, stop %2").arg(one(r.value(QStringLiteral("start")).toObject()),
                                          one(r.value(QStringLiteral("stop")).toObject()));
    }
    if (section == QLatin1String("direction"))
        return v.toString() == QLatin1String("reversed") ? tr("reversed") : tr("standard");
    return v.toString();
}

} // namespace

CommissioningReport::CommissioningReport(const NetworkDocument& document)
    : m_document(document)
    , m_title(tr("Commissioning report"))
{
}

void CommissioningReport::setTitle(const QString& title)
{
    m_title = title;
}

QString CommissioningReport::html() const
{
    const QDateTime taken = QDateTime::fromString(m_document.time, Qt::ISODate);
    QString h;
    h += QStringLiteral("<!DOCTYPE html><html><head><meta charset=\"utf-8\"><title>%1</title>"
                        "<style>body{font-family:sans-serif;font-size:9pt;} table{border-collapse:collapse;margin-bottom:12pt;}"
                        "th{background:#dde4ee;text-align:left;} th,td{border:1px solid #888;padding:3px 6px;}"
                        "h1{font-size:24pt;} h2{font-size:16pt;margin-top:18pt;}</style></head><body>")
             .arg(esc(m_title));
    // Title page.
    h += QStringLiteral("<div style=\"page-break-after:always\"><p>&nbsp;</p><p>&nbsp;</p><h1 align=\"center\">%1</h1>")
             .arg(esc(m_title));
    h += QStringLiteral("<table align=\"center\" cellpadding=\"4\"><tr><th>%1</th><td>%2</td></tr><tr><th>%3</th><td>%4</td></tr>"
                        "<tr><th>%5</th><td>%6</td></tr><tr><th>%7</th><td>%8</td></tr></table></div>")
             .arg(tr("Date"), esc(taken.isValid() ? taken.toLocalTime().toString(Qt::ISODate) : m_document.time),
                  tr("Bus"), esc(m_document.bus), tr("Tool version"), esc(m_document.toolVersion), tr("Devices"))
             .arg(m_document.devices.size());

    // Devices by kind, in the order of the kinds' numbers.
    QMap<int, QList<QJsonObject>> byKind;
    for (const QJsonObject& e : m_document.devices)
        byKind[NetworkDocument::kindOf(e.value(QStringLiteral("kind")).toString())] << e;
    const QStringList settingSections{QStringLiteral("direction"), QStringLiteral("limits"), QStringLiteral("ips"),
                                      QStringLiteral("speed"), QStringLiteral("ramp")};
    for (auto it = byKind.begin(); it != byKind.end(); ++it) {
        const QStringList sections = NetworkDocument::sectionsOf(it.key());
        QStringList settings;
        for (const QString& s : settingSections)
            if (sections.contains(s))
                settings << s;
        h += QStringLiteral("<h2>%1 (%2)</h2><table width=\"100%\" border=\"1\" cellspacing=\"0\" cellpadding=\"3\"><tr><th>%3</th><th>%4</th><th>%5</th><th>%6</th><th>%7</th>")
                 .arg(esc(kindTitle(NetworkDocument::kindKey(it.key()))))
                 .arg(it.value().size())
                 .arg(tr("Node"), tr("Serial number"), tr("Label"), tr("Groups"), tr("Firmware"));
        static const QHash<QString, const char*> heads{
            {QStringLiteral("direction"), QT_TRANSLATE_NOOP("CommissioningReport", "Direction")},
            {QStringLiteral("limits"), QT_TRANSLATE_NOOP("CommissioningReport", "End limits")},
            {QStringLiteral("ips"), QT_TRANSLATE_NOOP("CommissioningReport", "Intermediate positions")},
            {QStringLiteral("speed"), QT_TRANSLATE_NOOP("CommissioningReport", "Speeds")},
            {QStringLiteral("ramp"), QT_TRANSLATE_NOOP("CommissioningReport", "Ramps")}};
        for (const QString& s : settings)
            h += QStringLiteral("<th>%1</th>").arg(tr(heads.value(s)));
        h += QStringLiteral("</tr>");
        for (const QJsonObject& e : it.value()) {
            h += QStringLiteral("<tr><td>%1</td><td>%2</td><td>%3</td><td>%4</td><td>%5</td>")
                     .arg(nodeText(e.value(QStringLiteral("node")).toVariant().toLongLong()),
                          esc(shown(e, QStringLiteral("serialNumber"))), esc(shown(e, QStringLiteral("label"))),
                          esc(shown(e, QStringLiteral("groups"))), esc(shown(e, QStringLiteral("firmwareVersion"))));
            for (const QString& s : settings)
                h += QStringLiteral("<td>%1</td>").arg(esc(shown(e, s)));
            h += QStringLiteral("</tr>");
        }
        h += QStringLiteral("</table>");
    }

    // Groups and their members.
    QMap<qint64, QStringList> members;
    for (const QJsonObject& e : m_document.devices) {
        for (const QJsonValue& g : e.value(QStringLiteral("groups")).toArray()) {
            if (g.toInt() == 0)
                continue;
            const QString label = e.value(QStringLiteral("label")).toString();
            const QString who = nodeText(e.value(QStringLiteral("node")).toVariant().toLongLong())
                + (label.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(label));
            if (!members[g.toVariant().toLongLong()].contains(who))
                members[g.toVariant().toLongLong()] << who;
        }
    }
    h += QStringLiteral("<h2>%1</h2>").arg(tr("Groups"));
    if (members.isEmpty()) {
        h += QStringLiteral("<p>%1</p>").arg(tr("No device belongs to a group."));
    } else {
        h += QStringLiteral("<table width=\"100%\" border=\"1\" cellspacing=\"0\" cellpadding=\"3\"><tr><th>%1</th><th>%2</th></tr>")
                 .arg(tr("Group"), tr("Members"));
        for (auto it = members.begin(); it != members.end(); ++it)
            h += QStringLiteral("<tr><td>%1</td><td>%2</td></tr>").arg(nodeText(it.key()), esc(it.value().join(QStringLiteral(", "))));
        h += QStringLiteral("</table>");
    }
    h += QStringLiteral("</body></html>");
    return h;
}

QTextDocument* CommissioningReport::textDocument() const
{
    auto doc = new QTextDocument;
    doc->setHtml(html());
    return doc;
}

bool CommissioningReport::writeHtml(const QString& fileName, QString& error) const
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(html().toUtf8()) < 0 || !file.commit()) {
        error = tr("cannot write %1: %2").arg(fileName, file.errorString());
        return false;
    }
    return true;
}

bool CommissioningReport::writePdf(const QString& fileName, QString& error) const
{
    QPdfWriter writer(fileName);
    writer.setTitle(m_title);
    writer.setCreator(QCoreApplication::applicationName());
    writer.setPageSize(QPageSize(QPageSize::A4));
    // Landscape: a motor's row has nine columns.
    writer.setPageOrientation(QPageLayout::Landscape);
    writer.setResolution(300);
    QScopedPointer<QTextDocument> doc(textDocument());
    // Printed unpaginated: QTextDocument lays it out on the writer's pages
    // with a margin and the page number at the foot of every page.
    doc->print(&writer);
    QFile check(fileName);
    if (!check.exists() || check.size() == 0) {
        error = tr("cannot write %1").arg(fileName);
        return false;
    }
    return true;
}
