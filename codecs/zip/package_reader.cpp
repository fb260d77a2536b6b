// A member in the file (APPNOTE.TXT 6.3, section 4.3; fields: zip_format.cpp):
//
//   local header        30 bytes, name, extra field
//   data                member.compressedSize bytes
//   [data descriptor]   not read: the directory has the same numbers
//
// The directory determines all facts. From the local header only its own length is used.
#include "codecs/zip/package_reader.h"

#include "base/bytes.h"
#include "base/limits.h"
#include "codecs/zip/zip_directory.h"
#include "codecs/zip/zip_format.h"

namespace corvanta::zip {

namespace {

using namespace Qt::StringLiterals;

constexpr qint64 kChunkBytes = qint64(256) * 1024;
// General purpose flags (section 4.4.4). Bit 13: the local header is masked, because the directory
// is encrypted.
constexpr quint16 kFlagMasked = 1U << 13;
constexpr quint16 kEncryptionFlags = kFlagEncrypted | kFlagStrongEncryption | kFlagMasked;

/// The same bytes in the type of the decoders.
std::span<const char> spanOf(QByteArrayView bytes)
{
    return {bytes.data(), static_cast<size_t>(bytes.size())};
}

/// A member by its name. Some writers separate folders by backslashes, against the format.
const Member *findWithAnySlash(const PackageReader &package, QByteArrayView name)
{
    const Member *const member = package.find(name);
    return member ? member : package.find(name.toByteArray().replace('/', '\\'));
}

/// Whether the declared sizes are possible. Rejects archives that claim to expand without limit.
bool canHaveSize(const Member &member)
{
    const auto least = (member.size - limits::kDeflateSlackBytes) / limits::kDeflateMaxRatio;
    return member.method == kStored ? member.size == member.compressedSize
                                    : least <= member.compressedSize;
}

} // namespace

// ---- RawMemberStream

RawMemberStream::RawMemberStream(ByteSource &source, const Member &member, qint64 dataOffset)
    : m_source(source)
    , m_offset(dataOffset)
    , m_left(member.compressedSize)
    , m_decoder(member)
{
}

// The next chunk of the file; empty after the last one. The checksum is known to be right only
// after all chunks.
Result<QByteArrayView, Error> RawMemberStream::nextUnverified()
{
    const qint64 bytes = std::min(m_left, kChunkBytes);
    m_chunk.resize(bytes);
    if (bytes == 0) {
        return QByteArrayView();
    }
    if (!m_source.seek(m_offset) || readFully(m_source, m_chunk.data(), bytes) != bytes) {
        return Fault{Error::ReadFailed, {}, m_offset};
    }
    m_offset += bytes;
    m_left -= bytes;
    return QByteArrayView(m_chunk);
}

Result<QByteArrayView, Error> RawMemberStream::next()
{
    const auto chunk = nextUnverified();
    if (!chunk) {
        return chunk.fault();
    }
    m_scratch.resize(kChunkBytes);
    std::span<const char> input = spanOf(*chunk);
    while (!m_decoder.isAtEnd()) {
        const auto step = m_decoder.decode(input, m_scratch);
        if (!step) {
            return step.fault();
        }
        input = input.subspan(step->consumed);
        if (step->consumed + step->produced == 0) {
            break;
        }
    }
    if (m_left == 0 && !m_decoder.isAtEnd()) {
        return Fault{Error::BadData, u"the data ends too early"_s, m_offset};
    }
    return *chunk;
}

// ---- MemberStream

MemberStream::MemberStream(ByteSource &source, const Member &member, qint64 dataOffset)
    : m_source(source)
    , m_member(member)
    , m_dataOffset(dataOffset)
    , m_raw(new RawMemberStream(source, member, dataOffset))
{
}

qint64 MemberStream::fail(Fault<Error> fault)
{
    m_fault = std::move(fault);
    return -1;
}

qint64 MemberStream::read(void *buffer, qint64 n)
{
    if (m_fault) {
        return -1;
    }
    const std::span<char> output(static_cast<char *>(buffer), static_cast<size_t>(n));
    while (n > 0) {
        const auto step = m_raw->m_decoder.decode(spanOf(m_input), output);
        if (!step) {
            return fail(step.fault());
        }
        m_input = m_input.sliced(static_cast<qsizetype>(step->consumed));
        if (step->produced > 0 || m_raw->m_decoder.isAtEnd()) {
            return static_cast<qint64>(step->produced);
        }
        if (step->consumed > 0) {
            continue;
        }
        const auto chunk = m_raw->nextUnverified();
        if (!chunk) {
            return fail(chunk.fault());
        }
        if (chunk->isEmpty()) {
            return fail({Error::BadData, u"the data ends too early"_s, m_raw->m_offset});
        }
        m_input = *chunk;
    }
    return 0;
}

bool MemberStream::seek(qint64 offset)
{
    if (offset < 0 || offset > m_member.size) {
        return false;
    }
    if (offset < m_raw->m_decoder.position()) {
        m_raw.reset(new RawMemberStream(m_source, m_member, m_dataOffset));
        m_input = {};
        m_fault.reset();
    }
    return skipBytes(*this, offset - m_raw->m_decoder.position());
}

// ---- PackageReader

Result<std::unique_ptr<PackageReader>, Error> PackageReader::open(ByteSource &source)
{
    auto members = readDirectory(source);
    if (!members) {
        return members.fault();
    }
    std::unique_ptr<PackageReader> reader(new PackageReader(source));
    reader->m_members = std::move(*members);
    for (size_t i = 0; i < reader->m_members.size(); ++i) {
        reader->m_byName.emplace(reader->m_members[i].name, i); // the first of equal names remains
    }
    return reader;
}

const Member *PackageReader::find(QByteArrayView name) const
{
    const auto found = m_byName.find(name.toByteArray());
    return found == m_byName.end() ? nullptr : &m_members[found->second];
}

namespace {

/// Whether this reader supports the member.
Result<void, Error> checkMember(const Member &member)
{
    if (member.flags & kEncryptionFlags) {
        return Fault{Error::Encrypted};
    }
    if (member.method != kStored && member.method != kDeflated) {
        return Fault{Error::UnknownMethod, QString::number(member.method)};
    }
    if (!canHaveSize(member)) {
        return Fault{Error::BadSize, u"more than deflate can say in so few bytes"_s};
    }
    return {};
}

} // namespace

// Offset of the member's data in the file.
// The name and the extra field of the local header may be longer or shorter than those of the
// directory, so that the place of the data is known only from the local header.
Result<qint64, Error> PackageReader::findData(const Member &member)
{
    if (auto checked = checkMember(member); !checked) {
        return checked.fault();
    }
    const auto header = readAt(m_source, member.headerOffset, kLocalHeaderBytes);
    if (!header) {
        return header.fault();
    }
    const qint64 nameBytes = loadLE<quint16>(header->data() + 26);
    const qint64 extraBytes = loadLE<quint16>(header->data() + 28);
    const qint64 offset = member.headerOffset + kLocalHeaderBytes + nameBytes + extraBytes;
    if (loadLE<quint32>(header->data()) != kLocalSignature ||
        loadLE<quint16>(header->data() + 8) != member.method || nameBytes != member.name.size() ||
        offset > member.dataLimit - member.compressedSize) {
        return Fault{Error::BadLocalHeader, {}, member.headerOffset};
    }
    return offset;
}

Result<std::unique_ptr<RawMemberStream>, Error> PackageReader::openRaw(const Member &member)
{
    const auto offset = findData(member);
    if (!offset) {
        return offset.fault();
    }
    return std::unique_ptr<RawMemberStream>(new RawMemberStream(m_source, member, *offset));
}

Result<std::unique_ptr<MemberStream>, Error> PackageReader::openStream(const Member &member)
{
    return openStream(member, m_source);
}

Result<std::unique_ptr<MemberStream>, Error> PackageReader::openStream(const Member &member,
                                                                       ByteSource &source)
{
    const auto offset = findData(member);
    if (!offset) {
        return offset.fault();
    }
    return std::unique_ptr<MemberStream>(new MemberStream(source, member, *offset));
}

Result<std::unique_ptr<MemberStream>, Error> PackageReader::openStream(QByteArrayView name)
{
    if (const Member *const member = findWithAnySlash(*this, name)) {
        return openStream(*member);
    }
    return Fault{Error::NoMember, QString::fromUtf8(name)};
}

Result<QByteArray, Error> PackageReader::readWhole(QByteArrayView name)
{
    const Member *member = find(name);
    return member ? readWhole(*member) : Fault{Error::NoMember, QString::fromUtf8(name)};
}

Result<QByteArray, Error> PackageReader::readWhole(const Member &member)
{
    auto stream = openStream(member);
    if (!stream) {
        return stream.fault();
    }
    if (member.size > limits::kMemberBytes) {
        return Fault{Error::TooLarge, QString::number(member.size)};
    }
    QByteArray bytes(member.size, Qt::Uninitialized);
    char beyond = 0; // the read that returns 0 verifies the member
    if (readFully(**stream, bytes.data(), member.size) != member.size ||
        (*stream)->read(&beyond, 1) != 0) {
        return (*stream)->fault().value_or(Fault{Error::BadSize});
    }
    return bytes;
}

Result<RawMember, Error> PackageReader::readRaw(const Member &member)
{
    auto stream = openRaw(member);
    if (!stream) {
        return stream.fault();
    }
    if (member.compressedSize > limits::kMemberBytes) {
        return Fault{Error::TooLarge, QString::number(member.compressedSize)};
    }
    RawMember raw{member, {}};
    raw.bytes.reserve(member.compressedSize);
    for (;;) {
        const auto chunk = (*stream)->next();
        if (!chunk) {
            return chunk.fault();
        }
        if (chunk->isEmpty()) {
            return raw;
        }
        raw.bytes += *chunk;
    }
}

} // namespace corvanta::zip
