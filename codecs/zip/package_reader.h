// io/package/package_reader.h
// Read an Office package (a zip file) member by member.
//
// The file is not trusted: whatever it says, a call ends with the right bytes or a fault.
// Threads: one at a time, the streams of a reader included: they read from the one source in turn.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"
#include "codecs/zip/member_decoder.h"

#include <QHash>

#include <memory>
#include <optional>
#include <vector>

namespace corvanta::zip {

/// A member with its bytes as they are stored, whose content has been verified.
struct RawMember
{
    Member member;
    QByteArray bytes;
};

/// The stored bytes of a member, in chunks; every chunk is decompressed to verify the member.
class RawMemberStream
{
public:
    /// The next chunk, valid until the next call; empty when all of the member was there and good.
    /// Errors: ReadFailed, BadData, BadSize, BadChecksum.
    Result<QByteArrayView, Error> next();

private:
    friend class PackageReader;
    friend class MemberStream;
    RawMemberStream(ByteSource &source, const Member &member, qint64 dataOffset);
    Result<QByteArrayView, Error> nextUnverified();

    ByteSource &m_source;
    qint64 m_offset;
    qint64 m_left;
    MemberDecoder m_decoder;
    QByteArray m_chunk;
    std::vector<char> m_scratch;
};

/// A member's content as a stream. The reader and its source must outlive it.
class MemberStream final : public ByteSource
{
public:
    /// See ByteSource. The end (0) is reported only when size and checksum are as declared.
    qint64 read(void *buffer, qint64 n) override;
    qint64 size() override { return m_member.size; }
    /// Goes back by starting anew and forward by decompressing.
    bool seek(qint64 offset) override;
    /// Why the last read was negative. Errors: ReadFailed, BadData, BadSize, BadChecksum.
    const std::optional<Fault<Error>> &fault() const { return m_fault; }

private:
    friend class PackageReader;
    MemberStream(ByteSource &source, const Member &member, qint64 dataOffset);
    qint64 fail(Fault<Error> fault);

    ByteSource &m_source;
    Member m_member;
    qint64 m_dataOffset;
    std::unique_ptr<RawMemberStream> m_raw;
    QByteArrayView m_input;
    std::optional<Fault<Error>> m_fault;
};

class PackageReader
{
public:
    /// Read the directory. `source` must be able to seek and outlive the reader.
    /// Errors: ReadFailed, NotAPackage, BadDirectory.
    static Result<std::unique_ptr<PackageReader>, Error> open(ByteSource &source);

    /// All members in the directory's order.
    const std::vector<Member> &members() const { return m_members; }
    /// The member of exactly this name (of several the first), or null.
    const Member *find(QByteArrayView name) const;

    /// All bytes of a member; behind the last one stands a NUL byte, as behind those of every
    /// QByteArray. Errors: NoMember, TooLarge, and those of openStream and MemberStream.
    Result<QByteArray, Error> readWhole(QByteArrayView name);
    Result<QByteArray, Error> readWhole(const Member &member);

    /// Open a member for reading from its start. A name that is not found is looked up once more
    /// with
    /// "\" for every "/", as some packers write them.
    /// Errors: NoMember, ReadFailed, Encrypted, UnknownMethod, BadLocalHeader, BadSize.
    Result<std::unique_ptr<MemberStream>, Error> openStream(QByteArrayView name);
    Result<std::unique_ptr<MemberStream>, Error> openStream(const Member &member);

    /// Open a member's stored bytes for copying. Errors: as openStream.
    Result<std::unique_ptr<RawMemberStream>, Error> openRaw(const Member &member);
    /// All stored bytes of a member, verified. Errors: TooLarge, and those of openRaw and next().
    Result<RawMember, Error> readRaw(const Member &member);

private:
    explicit PackageReader(ByteSource &source)
        : m_source(source)
    {
    }
    Result<qint64, Error> findData(const Member &member);

    ByteSource &m_source;
    std::vector<Member> m_members;
    QHash<QByteArray, size_t> m_byName;
};

} // namespace corvanta::zip
