// Targets of writers.
//
//     mode          written to                    commit()          discard()
//     Replace       NAME_tmp_<action>_<random>    sync, rename      remove the temporary file
//     ReplaceByTmp  NAME_TMP, locked              sync, rename      remove the temporary file
//     (its network) NAME, locked                  sync              close
//     Append        NAME, locked                  sync              cut to the old length
//     (pipe)        NAME                          close             close
//
// Compressed bytes pass through a gzip::Writer on their way to that file.
//
// A new file is not synced by commit() but before the run ends, together with others.
#include "corvanta/target_file.h"

#include "base/platform/files.h"
#include "codecs/gzip/gzip_writer.h"
#include "corvanta/main_ui.h"
#include "run_files.h"

#include <QFileInfo>

#include <cerrno>
#include <optional>

using namespace Qt::StringLiterals;

namespace platform = corvanta::platform;
using corvanta::Fault;
using corvanta::LockError;
using corvanta::RunFiles;
using corvanta::SystemError;
using corvanta::TargetLock;

namespace {

/// The name that a chain of links ends at, whether or not a file of that name exists; `name` itself
/// when it is not a link. Nothing when the chain does not end.
std::optional<QString> followLinks(const QString &name)
{
    return QFileInfo(name).isSymLink() ? platform::finalName(name) : std::optional(name);
}

/// Such a target has readers that are connected to it: replacing it would separate them. Standard
/// output may be a file, which other programs write to before and after this one.
bool isConnected(const QString &name)
{
    return name == QLatin1StringView(platform::kStandardOutput) || platform::isPipeOrDevice(name);
}

/// Calls `rename`. What it throws for lack of memory leaves no temporary file.
bool renamed(const TargetFile::Rename &rename, const QString &temporary, const QString &target)
{
    try {
        return rename(temporary, target);
    } catch (...) {
        platform::removeFile(temporary);
        throw;
    }
}

} // namespace

/// Compresses what the owner writes, and takes the compressed bytes.
class TargetFile::Packer final : private corvanta::ByteSink
{
public:
    explicit Packer(TargetFile &target)
        : m_target(target)
        , gzip(*this)
    {
    }

private:
    bool write(const void *bytes, qint64 n) override { return m_target.writePlain(bytes, n); }
    bool seek(qint64) override { return false; }
    qint64 position() const override { return m_target.m_file->position(); }
    bool flush() override { return true; }

    TargetFile &m_target;

public:
    corvanta::gzip::Writer gzip; // last: its threads use the other members
};

TargetFile::TargetFile() = default;

TargetFile::~TargetFile()
{
    discard();
}

TargetFile::Done TargetFile::open(const QString &name, Options options)
{
    discard();
    m_temporary.clear(); // an open() that failed leaves its name
    m_appends = m_existed = false;
    m_error = {};
    m_options = std::move(options);
    // The name that readers use, whatever file its links lead to.
    if (!name.endsWith(".gz"_L1)) {
        m_options.packing = Packing::None;
    }
    m_target = name;
    // Checked before links are followed: what /dev/stdout leads to may have no name of its own.
    m_isRegular = !isConnected(name);
    if (!m_isRegular) {
        return openFile(name, MyWriteFile::Existing::Truncate);
    }
    const std::optional<QString> end = followLinks(name);
    if (name.isEmpty() || !end) {
        return failed(TargetError::CannotOpen, name, end ? ENOENT : ELOOP);
    }
    m_target = *end;
    RunFiles *const files = RunFiles::ofThread();
    if (files != nullptr && !files->claim(m_target, m_options.action)) {
        return failed(TargetError::CannotOpen, name, 0); // claim() has logged why
    }
    return openRegular();
}

TargetFile::Done TargetFile::openRegular()
{
    switch (m_options.mode) {
    case TargetMode::Replace:
        return openReplaced();
    case TargetMode::ReplaceByTmp:
        return openTmp();
    case TargetMode::Append:
        break;
    }
    return openAppended();
}

TargetFile::Done TargetFile::openFile(const QString &name, MyWriteFile::Existing existing)
{
    auto opened = MyWriteFile::open(name, existing);
    if (!opened) {
        return failed(TargetError::CannotOpen, m_target, opened.fault().code.number);
    }
    m_file = *std::move(opened);
    if (m_options.packing == Packing::ByName) {
        m_packer = std::make_unique<Packer>(*this);
    }
    return {};
}

/// The fault for a call that failed with the system's `error`.
Fault<TargetError> TargetFile::failed(TargetError code, const QString &name, int error)
{
    m_error = {error};
    return {code, name};
}

TargetFile::Done TargetFile::openReplaced()
{
    // A rename needs only the permission of the folder, so a read-only target is checked here.
    const QFileInfo info(m_target);
    if (info.isDir() || (info.exists() && !info.isWritable())) {
        return failed(TargetError::CannotOpen, m_target, info.isDir() ? EISDIR : EACCES);
    }
    return openUnique();
}

/// Open a temporary file that no other run has.
TargetFile::Done TargetFile::openUnique()
{
    constexpr int kMaxTries = 100;
    for (int i = 0; i < kMaxTries; ++i) {
        m_temporary = withSuffix(
            m_target, u"_tmp_%1_%2"_s.arg(QString::number(m_options.action),
                                          QString::number(MainUI::getNearUniqueRandomID())));
        Done opened = openFile(m_temporary, MyWriteFile::Existing::Refuse);
        // Only a name that is taken is worth another one.
        if (opened || !QFileInfo::exists(m_temporary)) {
            return opened;
        }
    }
    return failed(TargetError::CannotOpen, m_target, EEXIST);
}

TargetFile::Done TargetFile::openTmp()
{
    // The rename at the end needs only the folder's permission, so it is checked now.
    const QFileInfo info(m_target);
    if (info.exists() && (info.isDir() || !QFileInfo(info.absolutePath()).isWritable())) {
        return failed(TargetError::CannotReplace, m_target, info.isDir() ? EISDIR : EACCES);
    }
    if (KobiFileInfo::isNetDrive(m_target)) {
        return openLocked(MyWriteFile::Existing::Truncate);
    }
    m_temporary = m_target + "_TMP"_L1;
    // Cut names would be equal for several targets.
    if (withSuffix(m_target, u"_TMP"_s) != m_temporary) {
        return openUnique();
    }
    if (!removeLeftOver()) {
        return failed(TargetError::CannotReplace, m_temporary,
                      QFileInfo(m_temporary).isDir() ? EISDIR : errno);
    }
    Done opened = openFile(m_temporary, MyWriteFile::Existing::Refuse);
    const bool isOwn = opened && m_file->tryLock(m_temporary);
    if (isOwn || (!opened && !QFileInfo::exists(m_temporary))) {
        return opened;
    }
    // Another run is writing a file of this name, or took this one for a file that was left.
    m_file.reset();
    return openUnique();
}

/// Remove what a killed run has left under the temporary name. Returns false when that fails; the
/// file of a run that is writing stays.
bool TargetFile::removeLeftOver()
{
    const QFileInfo earlier(m_temporary);
    if (!earlier.exists() && !earlier.isSymLink()) {
        return true;
    }
    if (earlier.isSymLink()) {
        return platform::removeFile(m_temporary); // not followed
    }
    if (earlier.isDir()) {
        return false;
    }
    // While the lock is held no run can begin to use the file. A file that is gone may be followed
    // by one of another run.
    using Outcome = platform::FileLock::Outcome;
    platform::FileLock lock;
    const Outcome outcome = lock.tryFile(m_temporary);
    return outcome == Outcome::Held || outcome == Outcome::Missing ||
           platform::removeFile(m_temporary);
}

TargetFile::Done TargetFile::openAppended()
{
    const bool wasThere = QFileInfo::exists(m_target);
    Done opened = openLocked(MyWriteFile::Existing::Append);
    if (opened) {
        // Remembered for discard(), which must leave no file that was not there before. While this
        // waited for the lock, another run may have created the file.
        m_existed = !m_lock.hasCreated() && (wasThere || QFileInfo::exists(m_target));
        m_appends = true;
        m_oldSize = m_file->position();
    }
    return opened;
}

/// Open the target itself when no other run writes to it.
TargetFile::Done TargetFile::openLocked(MyWriteFile::Existing existing)
{
    const auto locked = m_lock.lock(m_target, m_options.lock, TargetLock::IfMissing::Create);
    if (!locked) {
        const bool isStopped = locked.fault().code == LockError::Stopped;
        return Fault{isStopped ? TargetError::Stopped : TargetError::Locked, m_target};
    }
    // Only now: what another run wrote must be complete before the file is emptied.
    Done opened = openFile(m_target, existing);
    if (opened) {
        return opened;
    }
    if (m_lock.hasCreated()) {
        platform::removeFile(m_target);
    }
    m_lock.release();
    return opened;
}

/// The only place where writers of files ask whether to repeat what failed.
template <class F> bool TargetFile::retried(F operation)
{
    // A failed write has returned to its first byte (MyWriteFile), so all of it is repeated.
    while (!operation()) {
        m_error = m_file->error();
        if (!m_options.retryWrite || !m_options.retryWrite()) {
            return false;
        }
    }
    return true;
}

bool TargetFile::write(const void *bytes, qint64 n)
{
    return m_packer ? m_packer->gzip.write(bytes, n) : writePlain(bytes, n);
}

bool TargetFile::writePlain(const void *bytes, qint64 n)
{
    return retried([&] { return m_file->write(bytes, n); });
}

qint64 TargetFile::position() const
{
    return m_packer ? m_packer->gzip.size() : m_file->position();
}

bool TargetFile::seek(qint64 offset)
{
    if (m_packer) {
        return false;
    }
    const bool done = m_file->seek(offset);
    m_error = done ? m_error : m_file->error();
    return done;
}

bool TargetFile::flush()
{
    return retried([&] { return m_file->flush(); });
}

TargetFile::Done TargetFile::commit()
{
    // A file that is replaced must never be lost. A new file may share its flush with others.
    return commit(QFileInfo::exists(m_target) ? Sync::Now : Sync::BeforeRunEnds,
                  [](const QString &temporary, const QString &target) {
                      return renameTMPFile(temporary, target);
                  });
}

TargetFile::Done TargetFile::commit(const Rename &rename)
{
    return commit(Sync::Now, rename);
}

TargetFile::Done TargetFile::commit(Sync sync, const Rename &rename)
{
    if (!isOpen()) {
        return Fault{TargetError::CannotWrite, m_target};
    }
    Done done = complete(m_isRegular && sync == Sync::Now);
    if (done && !m_temporary.isEmpty() && !renamed(rename, m_temporary, m_target)) {
        done = failed(TargetError::CannotRename, m_target, SystemError::ofLastCall().number);
    }
    if (!done && !m_temporary.isEmpty() && m_options.mode == TargetMode::Replace) {
        platform::removeFile(m_temporary);
    }
    if (done) {
        MainUI::logSink()->addWrittenFile(m_target);
    }
    keepTemporary(); // a file that was renamed is no longer there
    return done;
}

/// Write everything to the device, when `syncs` is set, and close the file.
TargetFile::Done TargetFile::complete(bool syncs)
{
    // A failed sync() is not repeated: the system may have dropped the bytes and would then report
    // success for the second call.
    const bool isPacked = !m_packer || m_packer->gzip.finish();
    m_packer.reset();
    const bool isWritten = isPacked && flush() && (!syncs || m_file->sync());
    m_error = isWritten ? m_error : m_file->error();
    // Before the file is closed, because discard() cuts the open file.
    if (!isWritten && m_appends) {
        discard();
        return Fault{TargetError::CannotWrite, m_target};
    }
    if (m_options.mode == TargetMode::ReplaceByTmp) {
        m_tmpLock = m_file->shareLock();
    }
    const bool isClosed = m_file->close();
    m_error = isClosed ? m_error : m_file->error();
    // A created file was synced; its entry in the folder must be, too.
    if (m_appends && !m_existed) {
        platform::syncFolder(QFileInfo(m_target).absolutePath());
    }
    m_file.reset();
    if (!isWritten || !isClosed) {
        return Fault{TargetError::CannotWrite, m_target};
    }
    return {};
}

void TargetFile::discard()
{
    if (!isOpen()) {
        return;
    }
    m_packer.reset(); // its threads may still write
    if (m_appends) {
        m_file->truncate(m_oldSize);
    }
    const bool isCreated = m_appends && !m_existed;
    if (m_temporary.isEmpty() && !m_appends && m_file->position() > 0) {
        MainUI::logSink()->addWrittenFile(m_target); // what it has cannot be taken back
    }
    // Close before removing: an open file cannot be removed on Windows.
    m_file.reset();
    const QString &unfinished = isCreated ? m_target : m_temporary;
    if (!unfinished.isEmpty()) {
        platform::removeFile(unfinished);
    }
    keepTemporary(); // releases the locks last: the next owner sees no unfinished file
}

void TargetFile::keepTemporary()
{
    m_packer.reset();
    m_file.reset();
    m_temporary.clear();
    m_appends = false;
    m_tmpLock.release();
    m_lock.release();
}
