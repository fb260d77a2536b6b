// The file that a writer produces: replaced in one step, appended to, or written directly.
//
// A target changes only when its new content is complete. Symbolic links are followed to their end:
// the file that they lead to is replaced or extended, and the links stay. A target that is not a
// regular file (a pipe, a device) cannot be replaced and is written directly. So is standard
// output.
#pragma once
#include "base/byte_sink.h"
#include "base/result.h"
#include "base/target_lock.h"
#include "corvanta/export.h"
#include "corvanta/files.h"

#include <QString>

#include <functional>
#include <memory>
#include <vector>

/// How a target is opened; each mode says what discard() and a failed commit() do.
enum class TargetMode {
    /// Writes "TARGET_tmp_<action>_<random number>" in the target's folder; commit() renames it to
    /// the target. A failure removes the temporary file. A target without write permission is
    /// refused, although its folder would permit the rename.
    Replace,
    /// Writes "TARGET_TMP", after removing what a killed run left; commit() renames it. While
    /// another run writes that file, a temporary file of its own is used, as with Replace. After a
    /// failed commit() the temporary file stays. On a network drive the target itself is written,
    /// and locked until the end.
    ReplaceByTmp,
    /// Appends to the target, or creates it, and locks it until the end. A failure restores the old
    /// length, or removes a target that was created.
    Append,
};

/// What went wrong; the detail of the fault is the name of the file.
enum class TargetError {
    CannotReplace, ///< ReplaceByTmp: the target or an earlier "TARGET_TMP" cannot be removed
    CannotOpen,
    Locked,  ///< another program has locked the target, which is written itself, for too long
    Stopped, ///< the run ended while the target was locked
    CannotWrite,
    CannotRename, ///< the temporary file is complete but could not be renamed
};

/// Call open(), write() as often as needed, and then commit() or discard(). Destroying an open
/// target discards it. An object can be opened again after either. Threads: one at a time.
class CORVANTA_EXPORT TargetFile final : public corvanta::ByteSink
{
public:
    using Done = corvanta::Result<void, TargetError>;
    /// Renames `temporary` to `target`; returns false when that failed, and leaves the reason in
    /// SystemError::ofLastCall().
    using Rename = std::function<bool(const QString &temporary, const QString &target)>;

    /// How the bytes are stored.
    enum class Packing : quint8 {
        None,
        ByName, ///< as gzip if the name ends in ".gz", for targets that are written in order
    };

    struct Options
    {
        int action = 0; ///< index of the action (ActionItem::getIdx()), part of the temporary name
        TargetMode mode = TargetMode::Replace;
        /// Called after a failed write or flush, for example when the disk is full; returns true to
        /// retry. Called on the thread that writes, which may be a worker thread of a codec.
        /// Without it nothing is retried.
        std::function<bool()> retryWrite = {};
        /// How a target that is written itself waits for other programs that write to it.
        corvanta::LockOptions lock = {};
        Packing packing = Packing::None;
    };

    TargetFile();
    ~TargetFile() override;

    /// Open `name`, which is expanded already; an open target is discarded first. Errors:
    /// CannotReplace, CannotOpen, Locked, Stopped.
    Done open(const QString &name, Options options);
    bool isOpen() const { return m_file != nullptr; }
    /// The file that commit() replaces or extends: the name, or where its links lead to. Valid
    /// after open(), also after a failed one.
    const QString &target() const { return m_target; }
    /// Why the last call that failed did so. No error when the system gave no reason. Valid until
    /// the next open().
    const corvanta::SystemError &error() const { return m_error; }
    /// Where the bytes are until commit(); empty when they are written to the target itself.
    const QString &temporaryName() const { return m_temporary; }

    // Only while open. A failed write or flush is repeated for as long as retryWrite() returns
    // true, so that no caller needs a loop of its own. A write that is given up has written
    // nothing.
    bool write(const void *bytes, qint64 n) override;
    /// Returns false in a pipe, in a device without positions, and when the bytes are packed.
    bool seek(qint64 offset) override;
    qint64 position() const override;
    bool flush() override;

    /// Complete the target and close it. The bytes of a replaced or extended file are flushed to
    /// the device first; a new file is flushed before the run ends. After a failure the target is
    /// unchanged. Errors: CannotWrite, CannotRename.
    Done commit();
    /// The same with `rename` in place of the plain renaming. The bytes are always flushed first.
    Done commit(const Rename &rename);
    /// Close the file and undo what was written, except to a target that is written directly.
    void discard();
    /// Close the file and leave the temporary file in its folder, for inspection.
    void keepTemporary();

private:
    enum class Sync { Now, BeforeRunEnds };
    class Packer;

    Done openRegular();
    Done openReplaced();
    Done openTmp();
    Done openUnique();
    bool removeLeftOver();
    Done openAppended();
    Done openLocked(MyWriteFile::Existing existing);
    Done openFile(const QString &name, MyWriteFile::Existing existing);
    Done commit(Sync sync, const Rename &rename);
    Done complete(bool syncs);
    bool writePlain(const void *bytes, qint64 n);
    template <class F> bool retried(F operation);
    corvanta::Fault<TargetError> failed(TargetError code, const QString &name, int error);

    Options m_options;
    QString m_target;
    QString m_temporary;     // empty: the target is written directly
    bool m_isRegular = true; // not a pipe or device
    bool m_appends = false;
    bool m_existed = false; // the appended file, before open()
    qint64 m_oldSize = 0;   // of the appended file
    std::unique_ptr<MyWriteFile> m_file;
    std::unique_ptr<Packer> m_packer; // writes to m_file; null: not packed
    corvanta::SystemError m_error;
    corvanta::TargetLock m_lock; // of a target that is written itself
    // Of "TARGET_TMP" between its end and its final name; before, the file itself is locked.
    corvanta::platform::FileLock m_tmpLock;
};

// Rows that the actions of a run have written, for actions that replace rows of the same file: what
// one action of a graph writes must not vanish without a message.

namespace corvanta {

/// Rows of one table of a file, for example of a sheet, that an action has written.
struct WrittenRows
{
    QString action; ///< its id in the graph
    // Numbers in the table, from 1.
    qint64 first = 1;
    qint64 last = 0;
};

// For the thread of an action, between init and the end of close; elsewhere nothing is remembered.

/// Remember until the end of the run that the calling action writes these rows.
CORVANTA_EXPORT void addWrittenRows(const QString &file, const QString &table, qint64 first,
                                    qint64 last);
/// Forget the rows from row `first` on, because the calling action replaces them. Returns what was
/// remembered of them, in the order in which it was written.
CORVANTA_EXPORT std::vector<WrittenRows> takeWrittenRows(const QString &file, const QString &table,
                                                         qint64 first);

} // namespace corvanta
