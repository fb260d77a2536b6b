// Writes members into a new package and repeats refused writes while the user wants it.
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"
#include "codecs/zip/package_writer.h"

#include <functional>

namespace corvanta::opc {

/// The fault of `member` that an error of the package means.
Fault<Error> memberFault(zip::Error error, const QByteArray &member);

/// Every fault names its member. Threads: one at a time.
class MemberWriter
{
public:
    /// `retryWrite` is called after a refused write; the write is repeated if it returns true.
    /// `output` must outlive the writer.
    MemberWriter(zip::PackageWriter &output, std::function<bool()> retryWrite)
        : m_output(output)
        , m_retryWrite(std::move(retryWrite))
    {
    }

    /// Start a member whose content is then written to output(). Errors: NotAdded, WriteFailed.
    Result<void, Error> open(const QByteArray &name);
    /// End it. Errors: WriteFailed.
    Result<void, Error> close();
    /// Write a whole member. Errors: NotAdded, WriteFailed.
    Result<void, Error> write(const QByteArray &name, const QByteArray &content);
    /// Copy a member as it is stored; its content is verified.
    /// Errors: Damaged, NoMember, NotAdded, WriteFailed.
    Result<void, Error> copy(zip::PackageReader &source, const zip::Member &member);
    /// Write the directory; nothing can be added afterwards. Errors: WriteFailed.
    Result<void, Error> finish();

    zip::PackageWriter &output() { return m_output; }

private:
    template <class F> Result<void, Error> retried(F operation, const QByteArray &member);

    zip::PackageWriter &m_output;
    std::function<bool()> m_retryWrite;
    QByteArray m_open; // the member between open() and close()
};

} // namespace corvanta::opc
