#ifndef COMMISSIONINGREPORT_H
#define COMMISSIONINGREPORT_H

#include "networkdocument.h"

#include <QString>

class QTextDocument;

/// The commissioning report of a network, to hand to a customer: a title
/// page (site, date, bus, tool version, device count), then the devices
/// grouped by kind in tables (node number, serial number, label, groups,
/// firmware version, settings), then the groups and their members. Written
/// as HTML and as PDF from one `QTextDocument`; the PDF (`QPdfWriter`, A4)
/// carries page numbers. Needs a `QGuiApplication` (any platform,
/// "offscreen" included) for the fonts.
///
///     CommissioningReport report(document);
///     report.setTitle(tr("Building B, 2nd floor"));
///     report.writePdf("site.pdf", &error) && report.writeHtml("site.html", &error);
class CommissioningReport
{
public:
    explicit CommissioningReport(const NetworkDocument& document);

    void setTitle(const QString& title);
    /// The report as HTML (the text of the HTML file).
    QString html() const;
    /// The report laid out for print; owned by the caller.
    QTextDocument* textDocument() const;
    bool writeHtml(const QString& fileName, QString& error) const;
    bool writePdf(const QString& fileName, QString& error) const;

private:
    NetworkDocument m_document;
    QString m_title;
};

#endif // COMMISSIONINGREPORT_H
