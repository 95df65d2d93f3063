#ifndef QMLDOCUMENTSESSION_H
#define QMLDOCUMENTSESSION_H

#include <QObject>
#include <QScopedPointer>
#include <QVariantList>

class QmlDocumentSessionPrivate;

/// The application's side of `NetworkConfiguration`: one document at a time
/// (backed up or opened), its differences with the devices as a list of maps
/// for QML, apply of all or some of them, a device replacement with a
/// preview, the commissioning report and the change log.
///
/// A difference map: "uuid", "node", "field", "document" and "device" (the
/// two values as text), "index". A history entry: "time", "tool", "uuid",
/// "node", "field", "old", "new", "outcome".
///
///     DocumentSession { id: session; onFinished: console.log(summary) }
///     session.open(path)   // reads the devices and lists the differences
class QmlDocumentSession : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool running READ isRunning NOTIFY runningChanged)
    Q_PROPERTY(int done READ done NOTIFY progressChanged)
    Q_PROPERTY(int total READ total NOTIFY progressChanged)
    Q_PROPERTY(QString fileName READ fileName NOTIFY documentChanged)
    Q_PROPERTY(int deviceCount READ deviceCount NOTIFY documentChanged)
    Q_PROPERTY(QVariantList differences READ differences NOTIFY differencesChanged)
    Q_PROPERTY(QVariantList preview READ preview NOTIFY previewChanged)
    Q_PROPERTY(QString summary READ summary NOTIFY finished)
    Q_PROPERTY(QString lastError READ lastError NOTIFY errorChanged)

public:
    explicit QmlDocumentSession(QObject* parent = nullptr);
    ~QmlDocumentSession() override;

    bool isRunning() const;
    int done() const;
    int total() const;
    QString fileName() const;
    int deviceCount() const;
    QVariantList differences() const;
    QVariantList preview() const;
    QString summary() const;
    QString lastError() const;

    /// Backs up every device of the registry into `fileName`.
    Q_INVOKABLE bool backup(const QString& fileName);
    /// Opens a document (refused with the place in `lastError`) and compares
    /// the devices with it.
    Q_INVOKABLE bool open(const QString& fileName, bool otherBus = false);
    /// Writes the differences of `indexes` (every one when empty).
    Q_INVOKABLE bool apply(const QVariantList& indexes = QVariantList());
    /// Lists in `preview` what giving device `newUuid` the entry of the
    /// document's device at `documentIndex` would write (the device is read).
    Q_INVOKABLE bool previewReplace(int documentIndex, quint32 newUuid);
    /// Writes the previewed replacement; the registry then knows the new device in the old one's place.
    Q_INVOKABLE bool confirmReplace();
    /// The document's devices for a chooser: "index", "node", "kind", "label".
    Q_INVOKABLE QVariantList documentDevices() const;
    /// Writes the commissioning report of the document (or, with none, of a
    /// fresh backup) as PDF and/or HTML; empty names are skipped.
    Q_INVOKABLE bool exportReport(const QString& pdfFile, const QString& htmlFile);
    /// The change log, newest last; `sinceIso` empty for all of it.
    Q_INVOKABLE QVariantList history(const QString& sinceIso = QString()) const;
    /// A file name from a URL or a path.
    Q_INVOKABLE static QString localFile(const QString& urlOrPath);

Q_SIGNALS:
    void runningChanged();
    void progressChanged();
    void documentChanged();
    void differencesChanged();
    void previewChanged();
    void errorChanged();
    void finished();

private:
    QScopedPointer<QmlDocumentSessionPrivate> d_ptr;
    Q_DECLARE_PRIVATE(QmlDocumentSession)
    Q_DISABLE_COPY(QmlDocumentSession)
};

#endif // QMLDOCUMENTSESSION_H
