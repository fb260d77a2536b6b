// A recovery file: a line of JSON with the name of the original, then the graph.
#include "studio/document/document_file.h"

#include "corvanta/failure_reason.h"
#include "corvanta/target_file.h"
#include "studio/document/problem_watch.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr qint64 kMaxGraphBytes = qint64(256) << 20; // as the host's
constexpr auto kRecoverySuffix = ".recovery"_L1;

/// The content of a file; null if it cannot be read.
QByteArray bytesOf(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Identifies a content; empty for a file that cannot be read.
QByteArray digestOf(const QByteArray &bytes)
{
    return bytes.isNull() ? QByteArray()
                          : QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

/// The lock that a running session has on its recovery file.
std::unique_ptr<QLockFile> lockOf(const QString &recovery)
{
    auto lock = std::make_unique<QLockFile>(recovery + ".lock"_L1);
    lock->setStaleLockTime(0); // only the end of its process makes it stale
    return lock;
}

} // namespace

// Programs write a file in several steps, so changes are collected for a short time.
DocumentFile::DocumentFile(GraphDocument &document)
    : m_document(document)
{
    constexpr int kNoticeDelayMs = 200;
    m_noticeTimer.setSingleShot(true);
    m_noticeTimer.setInterval(kNoticeDelayMs);
    m_recoveryTimer.setSingleShot(true);
    m_recoveryTimer.setInterval(kRecoveryDelayMs);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, [this] { m_noticeTimer.start(); });
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this,
            [this] { m_noticeTimer.start(); });
    connect(&m_noticeTimer, &QTimer::timeout, this, &DocumentFile::noticeChange);
    connect(&m_recoveryTimer, &QTimer::timeout, this, &DocumentFile::writeRecovery);
}

DocumentFile::~DocumentFile()
{
    removeRecovery();
}

// A watch follows the file and not its name, so it begins again.
void DocumentFile::setContent(const QByteArray &bytes)
{
    m_base = digestOf(bytes);
    if (!m_watcher.files().isEmpty()) {
        m_watcher.removePaths(m_watcher.files());
    }
    if (!m_watcher.directories().isEmpty()) {
        m_watcher.removePaths(m_watcher.directories());
    }
    watch();
}

void DocumentFile::setBase(const QByteArray &digest)
{
    m_base = digest;
    watch();
    m_noticeTimer.start();
}

void DocumentFile::acceptFile()
{
    setContent(bytesOf(m_document.fileName()));
}

/// The folder too: a program that replaces the file ends the watch of the old one.
void DocumentFile::watch()
{
    const QString name = m_document.fileName();
    if (name.isEmpty()) {
        return;
    }
    const QString folder = QFileInfo(name).absolutePath();
    if (!m_watcher.directories().contains(folder)) {
        m_watcher.addPath(folder);
    }
    if (!m_watcher.files().contains(name) && QFileInfo::exists(name)) {
        m_watcher.addPath(name);
    }
}

// Compared by content: the times of files change without a reason the user would understand.
bool DocumentFile::hasChanged() const
{
    const QString name = m_document.fileName();
    return !name.isEmpty() && digestOf(bytesOf(name)) != m_base;
}

/// Compare the file, after a change of it or of its folder.
void DocumentFile::noticeChange()
{
    watch();
    if (hasChanged()) {
        Q_EMIT m_document.changedOnDisk();
    }
}

// Not put off by further edits: a user who types for minutes is protected too.
void DocumentFile::scheduleRecovery()
{
    if (!m_recoveryTimer.isActive()) {
        m_recoveryTimer.start();
    }
}

// Saved or undone in the meantime, the document needs no recovery.
bool DocumentFile::writeRecovery()
{
    if (!m_document.isModified()) {
        removeRecovery();
        return true;
    }
    if (m_recovery.isEmpty()) {
        QDir().mkpath(recoveryFolder());
        m_recovery = recoveryFolder() + u'/' + QUuid::createUuid().toString(QUuid::WithoutBraces) +
                     kRecoverySuffix;
        m_lock = lockOf(m_recovery);
        m_lock->tryLock();
    }
    // A TargetFile would flush to the device, which is too slow for each edit.
    QSaveFile file(m_recovery);
    const QJsonObject head{{u"original"_s, m_document.fileName()},
                           {u"base"_s, QString::fromLatin1(m_base)}};
    const QByteArray text =
        QJsonDocument(head).toJson(QJsonDocument::Compact) + '\n' + m_document.toXml();
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
}

// The lock goes last, or another session could offer the file.
void DocumentFile::removeRecovery()
{
    m_recoveryTimer.stop();
    if (!m_recovery.isEmpty()) {
        QFile::remove(m_recovery);
        m_lock.reset();
        m_recovery.clear();
    }
}

QString DocumentFile::recoveryFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/recovery"_L1;
}

// The files of sessions that are running have a lock.
QVector<GraphDocument::Recovery> DocumentFile::recoveries()
{
    QVector<GraphDocument::Recovery> all;
    const QFileInfoList files =
        QDir(recoveryFolder()).entryInfoList({u'*' + kRecoverySuffix}, QDir::Files, QDir::Time);
    for (const QFileInfo &info : files) {
        const auto lock = lockOf(info.absoluteFilePath());
        if (lock->tryLock(0)) { // released at the end of the block
            const QByteArray line = bytesOf(info.absoluteFilePath()).split('\n').first();
            const QJsonObject head = QJsonDocument::fromJson(line).object();
            all.append({info.absoluteFilePath(), head.value("original"_L1).toString(),
                        info.lastModified(), head.value("base"_L1).toString().toLatin1()});
        }
    }
    return all;
}

// Everything after the line with the name of the original.
QByteArray DocumentFile::recoveredText(const QString &file)
{
    const QByteArray bytes = bytesOf(file);
    const qsizetype end = bytes.indexOf('\n');
    return end < 0 ? QByteArray() : bytes.mid(end + 1);
}

GraphDocument::FileResult<std::unique_ptr<GraphDocument>>
GraphDocument::open(const QString &file, const ActionRegistry &registry)
{
    auto document = std::make_unique<GraphDocument>(registry);
    document->m_graph.fileName = QFileInfo(file).absoluteFilePath();
    if (const auto loaded = document->reload(); !loaded) {
        return loaded.fault();
    }
    return document;
}

GraphDocument::FileResult<void> GraphDocument::reload()
{
    const QString name = fileName();
    const QFileInfo info(name);
    const QByteArray text =
        info.isFile() && info.size() <= kMaxGraphBytes ? bytesOf(name) : QByteArray();
    if (text.isEmpty()) {
        // The host's reader words why folders, pipes and large files cannot be read.
        const auto checked = CorvantaGraph::load(name);
        return Fault{FileError::CannotRead,
                     checked ? tr("“%1” has changed while it was read.").arg(name)
                             : checked.fault().code.value(0).text};
    }
    if (auto loaded = load(text, name); !loaded) {
        return loaded;
    }
    m_differsFromFile = false;
    m_file->setContent(text);
    m_file->removeRecovery();
    Q_EMIT reloaded();
    Q_EMIT modifiedChanged(false);
    return {};
}

// The old file stays until the new one is complete.
GraphDocument::FileResult<void> GraphDocument::writeFile(const QString &file,
                                                         const QByteArray &content)
{
    TargetFile target;
    const bool isWritten = target.open(file, {}) &&
                           target.write(content.constData(), content.size()) && target.commit();
    return isWritten ? FileResult<void>()
                     : Fault{FileError::CannotWrite,
                             tr("“%1” cannot be written: %2").arg(file, failureReason(target))};
}

GraphDocument::FileResult<void> GraphDocument::write(const QString &file)
{
    const QByteArray text = toXml();
    if (auto written = writeFile(file, text); !written) {
        return written;
    }
    m_file->setContent(text);
    m_file->removeRecovery();
    m_differsFromFile = false;
    m_undo.setClean();
    Q_EMIT modifiedChanged(false);
    return {};
}

GraphDocument::FileResult<void> GraphDocument::save()
{
    return write(fileName());
}

// The name is set first, because what actions save is relative to its folder.
GraphDocument::FileResult<void> GraphDocument::saveAs(const QString &file)
{
    const QString name = QFileInfo(file).absoluteFilePath();
    const QString oldFolder = m_global.graphDir(); // the current one for a new graph
    const QString before = std::exchange(m_graph.fileName, name);
    const int step = m_undo.index();
    rebuildGraph(); // saved names are relative to the new folder
    rebaseInputs(oldFolder);
    if (auto written = write(name); !written) {
        m_graph.fileName = before;
        rebuildGraph();
        m_undo.setIndex(step);
        return written;
    }
    m_problems->schedule();
    Q_EMIT fileNameChanged();
    return {};
}

bool GraphDocument::hasChangedOnDisk() const
{
    return m_file->hasChanged();
}

// A removed file may have been the only other copy, so a kill must not lose this one either.
void GraphDocument::keepContent()
{
    m_differsFromFile = true;
    m_file->acceptFile();
    m_file->scheduleRecovery();
    Q_EMIT modifiedChanged(true);
}

QVector<GraphDocument::Recovery> GraphDocument::recoveries()
{
    return DocumentFile::recoveries();
}

// The new recovery file is complete before the old one goes: this session may be killed as well.
GraphDocument::FileResult<std::unique_ptr<GraphDocument>>
GraphDocument::recover(const Recovery &recovery, const ActionRegistry &registry)
{
    auto document = std::make_unique<GraphDocument>(registry);
    const QByteArray text = DocumentFile::recoveredText(recovery.file);
    if (const auto loaded = document->load(text, recovery.original); !loaded) {
        return loaded.fault();
    }
    document->m_differsFromFile = true;
    document->m_file->setBase(recovery.base);
    if (document->m_file->writeRecovery()) {
        discard(recovery);
    }
    return document;
}

void GraphDocument::discard(const Recovery &recovery)
{
    QFile::remove(recovery.file);
}

void GraphDocument::discardRecovery()
{
    m_file->removeRecovery();
}

} // namespace corvanta::studio
