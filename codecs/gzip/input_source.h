// io/unpack/input_source.h
// One kind of input: where its bytes come from is the kind's own business. The kinds that are a
// single packed file stand here, so that the host's own reader has them too; archives are in
// io/input.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"

#include <QString>

#include <memory>

namespace corvanta::input {

/// The bytes of an input, unpacked. Threads: one at a time.
///
/// A stream that is cut off or damaged ends in a failed read, never in an early end.
class InputSource : public ByteSource
{
public:
    /// How far reading is: an offset into what InputFile::getSize() is the size of, that is the
    /// packed file for gzip and .Z, the unpacked bytes for all others.
    virtual qint64 progressPosition() const = 0;

    /// Why the last read or seek failed, for people; empty while all is well.
    const QString &failure() const { return m_failure; }

    /// Name of the archive member that is read; empty for what is no archive.
    virtual QString memberName() const { return {}; }

protected:
    /// Remember why, and answer what a failed read answers.
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
    CannotOpen = 1, ///< the system does not open the file
    NoUnpacker,     ///< no library to unpack it with: the detail is the message to log
    Refused, ///< the file is not what its name says, or of an unsupported kind: see the detail
};

using Opened = Result<std::unique_ptr<InputSource>, OpenError>;

/// A gzip file (RFC 1952), of several members too. Like zlib's own reader it delivers a file that
/// does not start like one as it stands, and ignores what follows the last member.
Opened openGzip(const QString &path);

/// A Unix compress file (.Z).
Opened openCompress(const QString &path);

/// Read and drop `n` bytes; false when there are not so many, or after a failure.
bool skipBytes(ByteSource &source, qint64 n);

} // namespace corvanta::input
