// Input streams that report their progress and why they failed, and the ones for packed files.
//
// A packed file (.gz, .Z) is one compressed stream. Archives with several entries (zip, RAR) are in
// io/input. The host has the packed kinds so that its own readers can use them too.
// Threads: one at a time per object; separate objects are independent.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"
#include "base/system_error.h"
#include "corvanta/export.h"

#include <QStringList>

#include <memory>

class GlobalParameters;

namespace corvanta::input {

/// The unpacked bytes of an input. A truncated or damaged stream ends with a failed read, never
/// with an early end.
class InputSource : public ByteSource
{
public:
    /// How much has been read, in the unit of InputFile::getSize(): bytes of the packed file for
    /// gzip and .Z, unpacked bytes for all other kinds.
    virtual qint64 progressPosition() const = 0;

    /// Why the last read or seek failed, as text for the user. Empty if it succeeded.
    const QString &failure() const { return m_failure; }

    /// Why the system refused a read; no error if it refused none, or the source does not know it.
    /// Threads: any.
    virtual SystemError error() const { return {}; }

    /// Name of the archive member that is read. Empty if the input is not a zip archive.
    virtual QString memberName() const { return {}; }

protected:
    /// Stores the reason and returns -1, the result of a failed read.
    qint64 fail(const QString &why)
    {
        m_failure = why;
        return -1;
    }
    void clearFailure() { m_failure.clear(); }

private:
    QString m_failure;
};

enum class OpenError : quint8 {
    CannotOpen = 1, ///< The system cannot open the file, or the archive has no such member.
    NoUnpacker,     ///< The unpacking library is missing. The detail is the message to log.
    Refused,        ///< The content does not match the file's name or is not supported.
};

/// The detail of every fault is the reason in words, except for NoUnpacker.
using Opened = Result<std::unique_ptr<InputSource>, OpenError>;

/// Open a gzip file. `name` is expanded already. Reads nothing yet, so that damage is reported by
/// the first read. Errors: CannotOpen.
CORVANTA_EXPORT Opened openGzipFile(GlobalParameters *parameters, const QString &name);

/// Open a Unix compress file (.Z) and read its header. `name` is expanded already.
/// Errors: CannotOpen, Refused.
CORVANTA_EXPORT Opened openCompressFile(GlobalParameters *parameters, const QString &name);

/// Whether the name is that of a zip or RAR archive, without a member.
CORVANTA_EXPORT bool isArchive(const QString &name);
/// The names of the files in the archive, in its order: all of a zip archive, of a RAR archive the
/// one that can be read. `path` is expanded already. The detail of a fault is the reason in words.
/// Errors: CannotOpen, Refused.
CORVANTA_EXPORT Result<QStringList, OpenError> archiveMembers(const QString &path);

} // namespace corvanta::input
