#include "output.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>
#include <unistd.h>

QString printable(const QString& text)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        const ushort u = c.unicode();
        if (u < 0x20 || (u >= 0x7F && u <= 0x9F))
            out += QStringLiteral("\\x%1").arg(u, 2, 16, QLatin1Char('0'));
        else if (c.category() == QChar::Other_Format || u == 0x2028 || u == 0x2029)
            out += QStringLiteral("\\u%1").arg(u, 4, 16, QLatin1Char('0'));
        else
            out += c;
    }
    return out;
}

QByteArray Output::compact(const QJsonValue& value)
{
    if (value.isArray())
        return QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact);
    if (value.isObject())
        return QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact);
    // A bare value: wrapped and unwrapped, so strings are escaped as in a document.
    QByteArray bytes = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return bytes.mid(1, bytes.size() - 2);
}

void Output::out(const QByteArray& bytes)
{
    clearProgress();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    if (!m_buffered)
        std::fflush(stdout);
}

void Output::line(const QString& text)
{
    out(text.toUtf8() + '\n');
}

void Output::note(const QString& text)
{
    clearProgress();
    std::fflush(stdout);
    std::fprintf(stderr, "%s\n", text.toUtf8().constData());
}

void Output::document(const QJsonValue& value)
{
    m_begun = true;
    if (!value.isObject() || m_context.isEmpty())
        return out(compact(value) + '\n');
    QJsonObject object = value.toObject();
    for (auto it = m_context.begin(); it != m_context.end(); ++it)
        if (!object.contains(it.key()))
            object.insert(it.key(), it.value());
    out(compact(object) + '\n');
}

QByteArray Output::contextMembers() const
{
    const QByteArray object = compact(m_context);
    return m_context.isEmpty() ? QByteArray() : object.mid(1, object.size() - 2) + ',';
}

void Output::jsonLine(const QJsonObject& object)
{
    out(compact(object) + '\n');
}

void Output::write(const QByteArray& bytes)
{
    m_begun = true;
    out(bytes);
}

void Output::error(int exitCode, const QString& message)
{
    note(QStringLiteral("vrnconfig: ") + message);
    if (m_json && (m_stream || !m_begun))
        document(QJsonObject{{QStringLiteral("error"), message}, {QStringLiteral("exitCode"), exitCode}});
    flush();
}

void Output::flush()
{
    std::fflush(stdout);
}

bool Output::onTerminal()
{
    if (m_progressTerminal < 0)
        m_progressTerminal = isatty(STDERR_FILENO) ? 1 : 0;
    return m_progressTerminal == 1;
}

void Output::progress(const QString& status)
{
    if (!onTerminal())
        return;
    std::fflush(stdout);
    std::fprintf(stderr, "\r\033[K%s", status.toUtf8().constData());
    std::fflush(stderr);
    m_progressShown = true;
}

void Output::clearProgress()
{
    if (!m_progressShown)
        return;
    m_progressShown = false;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
}

void TextTable::header()
{
    QStringList titles;
    for (const Column& c : qAsConst(m_columns))
        titles << c.title;
    row(titles);
}

void TextTable::row(const QStringList& cells)
{
    QString text;
    for (int i = 0; i < cells.size(); ++i) {
        const Column c = m_columns.value(i, Column{QString(), 0});
        if (i > 0)
            text += QLatin1Char(' ');
        const QString cell = printable(cells.at(i));
        if (i + 1 == cells.size() && !c.right)
            text += cell;
        else
            text += c.right ? cell.rightJustified(c.width) : cell.leftJustified(c.width);
    }
    m_output.line(text);
}

JsonArrayStream::JsonArrayStream(Output& output, qint64 count, const QByteArray& open) : m_output(output), m_count(count)
{
    m_output.write(open.startsWith('{') ? '{' + m_output.contextMembers() + open.mid(1) + '\n' : open + '\n');
}

void JsonArrayStream::append(const QJsonObject& element)
{
    ++m_written;
    m_output.write(Output::compact(element) + (m_written < m_count ? ",\n" : "\n"));
}

void JsonArrayStream::close(const QByteArray& tail)
{
    m_output.write(tail + '\n');
    m_output.flush();
}
