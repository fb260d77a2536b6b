// Writes members into a new package, with faults that name the member.
//
// A refused write is final here. Only the sink of the package (TargetFile) may retry it.
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"
#include "codecs/zip/package_writer.h"

namespace corvanta::opc {

/// The fault of `member` that an error of the package means: what the user has to know of it.
Fault<Error> memberFault(zip::Error error, const QByteArray &member);

/// Members are written one after the other: open(), content through output(), close(); or write()
/// and copy() for whole members; finish() at the end. After a fault the package cannot be
/// completed. Every fault names its member. Threads: one at a time.
class MemberWriter
{
public:
    /// `output` must outlive the writer.
    explicit MemberWriter(zip::PackageWriter &output)
        : m_output(output)
    {
    }

    /// Start a member whose content is then written to output(). `name` is UTF-8 with "/" between
    /// its parts. Errors: NotAdded, WriteFailed.
    Result<void, Error> open(const QByteArray &name);
    /// End it and wait until its content is in the sink. Errors: WriteFailed.
    Result<void, Error> close();
    /// Write a whole member. Errors: NotAdded, WriteFailed.
    Result<void, Error> write(const QByteArray &name, const QByteArray &content);
    /// Copy a member as it is stored; its content is verified.
    /// Errors: those from Unreadable to WriteFailed.
    Result<void, Error> copy(zip::PackageReader &source, const zip::Member &member);
    /// Add a member from its stored bytes, which have been verified. Errors: NotAdded, WriteFailed.
    Result<void, Error> add(const zip::RawMember &raw);
    /// Write the directory; nothing can be added afterwards. Errors: WriteFailed.
    Result<void, Error> finish();

    zip::PackageWriter &output() { return m_output; }

private:
    zip::PackageWriter &m_output;
    QByteArray m_open; // the member between open() and close()
};

} // namespace corvanta::opc
