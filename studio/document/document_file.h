// The file of a document: notices changes by other programs, and keeps a recovery file.
//
// A recovery file has the state of a modified document. It is written a short time after each edit
// and removed when the document is saved or closed, so that one is left only by a session that was
// killed. A lock shows that the session of a recovery file is still running.
// Threads: the GUI thread.
#pragma once
#include "studio/document/graph_document.h"

#include <QFileSystemWatcher>
#include <QLockFile>
#include <QTimer>

namespace corvanta::studio {

class DocumentFile final : public QObject
{
public:
    /// `document` must outlive the object.
    explicit DocumentFile(GraphDocument &document);
    ~DocumentFile() override; ///< removes the recovery file

    /// The document now has the content `bytes` of its file.
    void setContent(const QByteArray &bytes);
    /// The document is made from a file with this digest; empty: from none. A change of the file
    /// since then is reported soon.
    void setBase(const QByteArray &digest);
    /// Take the file as it is now as the base of the document, whatever it contains.
    void acceptFile();
    /// Whether the file differs from that content. Reads the file.
    bool hasChanged() const;

    /// Write the recovery file soon, if the document is modified then.
    void scheduleRecovery();
    /// Write it now. Returns false if the document is not in it. Reports nothing, because no file
    /// of the user is concerned.
    bool writeRecovery();
    /// Also when nothing has been written.
    void removeRecovery();

    /// The folder of all recovery files.
    static QString recoveryFolder();
    /// Those of sessions that are not running, newest first.
    static QVector<GraphDocument::Recovery> recoveries();
    /// The graph in a recovery file; null if it cannot be read.
    static QByteArray recoveredText(const QString &file);

    static constexpr int kRecoveryDelayMs = 1000;

private:
    void watch();
    void noticeChange();

    GraphDocument &m_document;
    QByteArray m_base; // digest of the file when it was opened or saved; empty: there was none
    QFileSystemWatcher m_watcher;
    QTimer m_noticeTimer; // several changes of the file are reported once
    QTimer m_recoveryTimer;
    QString m_recovery; // empty: none is written
    std::unique_ptr<QLockFile> m_lock;
};

} // namespace corvanta::studio
