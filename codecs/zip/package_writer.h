// Writes an Office package (a zip file) member by member.
//
// Members are streamed: worker threads compress their content and write it to the sink, and the
// size need not be known in advance. Layout: docs/formats/package.md.
// Threads: all calls from one thread, except stop(), which may be called from any. One thread at a
// time uses the sink.
#pragma once
#include "base/byte_sink.h"
#include "base/result.h"
#include "codecs/deflate/deflate_stream.h"
#include "codecs/zip/package_reader.h"

#include <optional>
#include <set>
#include <span>
#include <vector>

namespace corvanta::zip {

/// After WriteFailed, Stopped and NoMemory the package cannot be completed: a sink that can retry a
/// write does so itself.
class PackageWriter
{
public:
    /// Maximum size of a room() request.
    static constexpr size_t kMaxRoomBytes = deflate::kMaxRoomBytes;

    /// Write to `sink`, which must be at its start, be able to seek, and outlive the writer.
    explicit PackageWriter(ByteSink &sink, const deflate::StreamOptions &options = {});

    /// Start a member. `name` is UTF-8 with "/" between its parts.
    /// Errors: WriteFailed, BadName, NameTaken.
    Result<void, Error> openMember(QByteArrayView name);

    /// A buffer for at least `n` bytes (at most kMaxRoomBytes) of the open member, valid until the
    /// next call. Errors: WriteFailed, Stopped, NoMemory.
    Result<std::span<char>, Error> room(size_t n);
    /// Add the first `n` bytes of the buffer from room() to the member.
    void commit(size_t n) { m_stream.commit(n); }

    /// Add a copy of `bytes` to the open member. Errors: WriteFailed, Stopped, NoMemory.
    Result<void, Error> write(QByteArrayView bytes);

    /// End the open member and wait until all of it is in the sink. Errors: WriteFailed, Stopped,
    /// NoMemory.
    Result<void, Error> closeMember();

    /// Add a member of another package: copy its stored bytes and verify them. After a read fault
    /// (those of PackageReader::openRaw() and RawMemberStream) the member is not in the package.
    /// Errors: also WriteFailed, Stopped, BadName, NameTaken.
    Result<void, Error> copyRaw(PackageReader &source, const Member &member);

    /// Add a member from its stored bytes, which must have been verified. Errors: WriteFailed,
    /// BadName, NameTaken.
    Result<void, Error> addRaw(const RawMember &raw);

    /// Write the central directory and flush the sink. The package is complete only after this
    /// call, and no member can be added afterwards. Errors: WriteFailed.
    Result<void, Error> close();

    /// Make calls that wait, and all later ones, return Stopped. May be called from any thread.
    void stop() { m_stream.stop(); }

private:
    struct OpenMember
    {
        Member member;
        qint64 dataOffset = 0;
    };

    /// Errors: BadName (empty, or longer than its 16-bit length can say) and those of checkIsNew().
    Result<void, Error> checkName(QByteArrayView name) const;
    /// Errors: NameTaken. Readers disagree on which of two members of one name they open.
    Result<void, Error> checkIsNew(const QByteArray &name) const;
    Result<void, Error> startMember(const Member &member);
    Result<void, Error> copyChunks(RawMemberStream &source);
    Result<void, Error> completeHeader();
    bool writeAt(qint64 offset, const QByteArray &bytes);
    Result<void, Error> enterDirectory();

    ByteSink &m_sink;
    deflate::DeflateStream m_stream;
    std::optional<OpenMember> m_open;
    std::vector<Member> m_members;
    std::set<QByteArray> m_names;
    qint64 m_flushedBytes = 0;
    bool m_hasDirectory = false;
};

/// Deflate a member once, for use in several packages. `name` is as for openMember().
/// Throws std::bad_alloc.
RawMember deflateMember(QByteArrayView name, QByteArrayView bytes, deflate::Level level = {});

} // namespace corvanta::zip
