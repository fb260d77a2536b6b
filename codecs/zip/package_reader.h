// Reads an Office package (a zip file) member by member.
//
// Does not trust the file: every call returns the correct bytes or a fault. Layout:
// docs/formats/package.md.
// Threads: one thread at a time per reader, including its streams, which share the source.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"
#include "codecs/zip/member_decoder.h"

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace corvanta::zip {

/// A member and its stored bytes, whose content has been verified.
struct RawMember
{
    Member member;
    QByteArray bytes;
};

/// Reads the stored bytes of a member in chunks, and decompresses them to verify the member. The
/// reader's source must outlive it.
class RawMemberStream
{
public:
    /// The next chunk, valid until the next call. Empty at the end of the member, which is then
    /// verified. Errors: ReadFailed, BadData, BadSize, BadChecksum.
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

/// Reads the content of a member as a stream. The reader's source must outlive it.
class MemberStream final : public ByteSource
{
public:
    /// See ByteSource. Returns 0 only if size and checksum are as declared.
    qint64 read(void *buffer, qint64 n) override;
    qint64 size() override { return m_member.size; }
    /// Seeks backward by starting again, and forward by decompressing.
    bool seek(qint64 offset) override;
    /// Why the last read returned a negative number; ByteSource cannot report it. Errors:
    /// ReadFailed, BadData, BadSize, BadChecksum.
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

    /// All members, in the directory's order.
    const std::vector<Member> &members() const { return m_members; }
    /// The first member of exactly this name, or null.
    const Member *find(QByteArrayView name) const;

    /// The content of a member, at most limits::kMemberBytes bytes. As in every QByteArray, a NUL
    /// byte follows the last byte. Errors: NoMember, TooLarge, and those of openStream() and
    /// MemberStream.
    Result<QByteArray, Error> readWhole(QByteArrayView name);
    Result<QByteArray, Error> readWhole(const Member &member);

    /// Open a member for reading from its start. If the name is not found, tries it again with "\"
    /// in place of each "/", as some packers write names.
    /// Errors: NoMember, ReadFailed, Encrypted, UnknownMethod, BadLocalHeader, BadSize.
    Result<std::unique_ptr<MemberStream>, Error> openStream(QByteArrayView name);
    Result<std::unique_ptr<MemberStream>, Error> openStream(const Member &member);
    /// The same through another source of the same bytes, so that several threads can read members.
    Result<std::unique_ptr<MemberStream>, Error> openStream(const Member &member,
                                                            ByteSource &source);

    /// Open the stored bytes of a member for copying. Errors: those of openStream().
    Result<std::unique_ptr<RawMemberStream>, Error> openRaw(const Member &member);
    /// All stored bytes of a member, verified. Errors: TooLarge, and those of openRaw() and
    /// RawMemberStream::next().
    Result<RawMember, Error> readRaw(const Member &member);

private:
    explicit PackageReader(ByteSource &source)
        : m_source(source)
    {
    }
    Result<qint64, Error> findData(const Member &member);

    ByteSource &m_source;
    std::vector<Member> m_members;
    std::unordered_map<QByteArray, size_t> m_byName; // index in m_members
};

} // namespace corvanta::zip
