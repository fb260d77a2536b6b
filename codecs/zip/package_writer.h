// io/package/package_writer.h
// Write an Office package (a zip file) member by member.
//
// Members are streamed: their bytes are compressed beside the caller and go to the sink as they
// come; the size need not be known before. Bytes written: docs/formats/package.md. Threads: all
// calls from one thread, but stop() from any; the sink is used by one thread at a time.
#pragma once
#include "base/byte_sink.h"
#include "base/result.h"
#include "codecs/deflate/deflate_stream.h"
#include "codecs/zip/package_reader.h"

#include <QSet>

#include <optional>
#include <span>
#include <vector>

namespace corvanta::zip {

/// Every call that answers WriteFailed may be repeated as it was (after the disk was made emptier,
/// say): it goes on where it stopped. Any other fault is final.
class PackageWriter
{
public:
    /// The most that room() can be asked for.
    static constexpr size_t kMaxRoomBytes = deflate::kMaxRoomBytes;

    /// Write from the sink's start. `sink` must outlive the writer and be able to seek.
    explicit PackageWriter(ByteSink &sink, const deflate::StreamOptions &options = {});

    /// Start a member. `name` is UTF-8 with "/" between its parts.
    /// Errors: WriteFailed, BadName, NameTaken.
    Result<void, Error> openMember(QByteArrayView name);

    /// Room for at least `n` (<= kMaxRoomBytes) bytes of the open member, valid until the next call
    /// of any kind. Errors: WriteFailed, Stopped, NoMemory.
    Result<std::span<char>, Error> room(size_t n);
    /// Take the first `n` bytes of the room as written.
    void commit(size_t n) { m_stream.commit(n); }

    /// Copy bytes into the open member. Errors: WriteFailed, Stopped, NoMemory.
    Result<void, Error> write(QByteArrayView bytes);

    /// End the open member: all of it is in the sink then. Errors: WriteFailed, Stopped, NoMemory.
    Result<void, Error> closeMember();

    /// Add a member of another package as it is: its stored bytes are copied and verified on the
    /// way. Repeat it with the same arguments after WriteFailed. After a fault of reading (those of
    /// PackageReader::openRaw and RawMemberStream) the member is not in the package.
    /// Errors: also WriteFailed, Stopped, BadName, NameTaken.
    Result<void, Error> copyRaw(PackageReader &source, const Member &member);

    /// Add a member from its stored bytes, which have been verified. Errors: WriteFailed, BadName,
    /// NameTaken.
    Result<void, Error> addRaw(const RawMember &raw);

    /// Write the central directory and flush the sink; nothing can be added then. Without it there
    /// is no package. Errors: WriteFailed.
    Result<void, Error> close();

    /// End every wait, from any thread: calls that wait, and later ones, answer Stopped.
    void stop() { m_stream.stop(); }

private:
    struct OpenMember
    {
        Member member;
        qint64 dataOffset = 0;
        bool isComplete = false; // header and data are in the sink
    };

    Result<void, Error> checkName(QByteArrayView name) const;
    Result<void, Error> startMember(const Member &member);
    Result<void, Error> copyChunks();
    bool completeHeader();
    bool writeAt(qint64 offset, const QByteArray &bytes);
    Result<void, Error> enterDirectory();

    ByteSink &m_sink;
    deflate::DeflateStream m_stream;
    std::optional<OpenMember> m_open;
    std::unique_ptr<RawMemberStream> m_rawSource; // of a copy that is under way
    QByteArrayView m_rawChunk;                    // of it, still to be written
    std::vector<Member> m_members;
    QSet<QByteArray> m_names;
    qint64 m_flushedBytes = 0;
    bool m_hasDirectory = false;
};

/// A member deflated once, for packages that all take it in. `name` as for openMember.
RawMember deflateMember(QByteArrayView name, QByteArrayView bytes, deflate::Level level = {});

} // namespace corvanta::zip
