#ifndef VRNCONFIG_OUTPUT_H
#define VRNCONFIG_OUTPUT_H

#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <QVector>

/// `text` safe to show on a terminal: control characters (C0, DEL, C1) and
/// invisible format characters (bidirectional overrides and the like) are
/// written as escapes ("\x1b", "\u202e"), so text from devices, registries
/// and documents can neither move the cursor nor recolour or hide what
/// follows. Tables and log lines show text from outside through this; JSON
/// carries it exactly.
QString printable(const QString& text);

/// Everything vrnconfig prints goes through here.
///
/// - For people: lines and tables on standard output, notes and progress on
///   standard error, one error line "vrnconfig: ..." on standard error.
/// - With --json: exactly one JSON document per command on standard output
///   (an array or an object), also on failure: `{"error": "...",
///   "exitCode": N}`. Streams (`monitor`, `watch`) print JSON Lines, one
///   object per line, and an error as one more such line.
class Output
{
public:
    explicit Output(bool json = false) : m_json(json) {}

    void setJson(bool json) { m_json = json; }
    bool json() const { return m_json; }
    /// Output is written at once (results, streams) or, for long listings,
    /// in large blocks when standard output is not a terminal.
    void setBuffered(bool buffered) { m_buffered = buffered; }
    /// The command prints JSON Lines rather than one document.
    void setStream(bool stream) { m_stream = stream; }
    bool stream() const { return m_stream; }

    /// One line on standard output.
    void line(const QString& text);
    /// One line on standard error (hints, summaries).
    void note(const QString& text);
    /// The command's one JSON document.
    void document(const QJsonValue& value);
    /// One line of a JSON Lines stream.
    void jsonLine(const QJsonObject& object);
    /// Raw bytes of a document being streamed (see JsonArrayStream).
    void write(const QByteArray& bytes);
    /// Says the command failed: one line on standard error and, with
    /// --json, the error document (or line) unless a document was begun.
    void error(int exitCode, const QString& message);
    void flush();

    /// Progress on a terminal: one status line on standard error, redrawn in
    /// place, cleared before anything else is written. Nothing when standard
    /// error is not a terminal.
    void progress(const QString& status);
    /// Standard error is a terminal (someone watches).
    bool onTerminal();
    void clearProgress();

    static QByteArray compact(const QJsonValue& value);
    /// Keys every JSON document that is an object carries (the bus and the
    /// registry a command used).
    void setContext(const QJsonObject& context) { m_context = context; }
    /// The context as the members of an object, each followed by a comma.
    QByteArray contextMembers() const;

private:
    void out(const QByteArray& bytes);

    bool m_json;
    bool m_buffered = false;
    bool m_stream = false;
    bool m_begun = false;
    bool m_progressShown = false;
    int m_progressTerminal = -1;
    QJsonObject m_context;
};

/// A table for people, written row by row: every column left-aligned and
/// padded to its width (wider values push the rest along), the last one not
/// padded; a column with `right` set is right-aligned. Cells are shown
/// through `printable()`.
class TextTable
{
public:
    struct Column
    {
        QString title;
        int width;
        bool right = false;
    };
    TextTable(Output& output, const QVector<Column>& columns) : m_output(output), m_columns(columns) {}

    void header();
    void row(const QStringList& cells);

private:
    Output& m_output;
    QVector<Column> m_columns;
};

/// A JSON array written element by element, one element per line, as the
/// elements come: the document stays valid JSON once `close()` ran after
/// exactly `count` elements. `open` and `close` may carry an enclosing
/// object: `{"results":[` ... `],"summary":{...}}`.
class JsonArrayStream
{
public:
    JsonArrayStream(Output& output, qint64 count, const QByteArray& open = "[");
    void append(const QJsonObject& element);
    void close(const QByteArray& tail = "]");
    qint64 written() const { return m_written; }

private:
    Output& m_output;
    qint64 m_count;
    qint64 m_written = 0;
};

#endif // VRNCONFIG_OUTPUT_H
