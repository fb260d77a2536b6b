// The package (APPNOTE.TXT 6.3, section 4.3.6; fields: zip_format.cpp):
//
//   for each member: local header | data | data descriptor, if a size does not fit 32 bits
//   central directory: one entry per member
//   end records
//
// The local header is written twice: first with zeros, to reserve its bytes, and again with sizes
// and checksum when the member is complete.
#include "codecs/zip/package_writer.h"

#include "codecs/zip/zip_format.h"

#include <algorithm>
#include <new>

namespace corvanta::zip {

namespace {

constexpr qsizetype kMaxNameBytes = 0xFFFF;
// Number of bytes after which a finished member is flushed, so that a sink that keeps blocks in
// memory does not grow.
constexpr qint64 kFlushBytes = qint64(5) * 1024 * 1024;

Fault<Error> faultOf(const Fault<deflate::Error> &fault)
{
    switch (fault.code) {
    case deflate::Error::WriteFailed:
        return {Error::WriteFailed};
    case deflate::Error::Stopped:
        return {Error::Stopped};
    case deflate::Error::NoMemory:
        break;
    }
    return {Error::NoMemory};
}

bool isAscii(QByteArrayView name)
{
    return std::all_of(name.begin(), name.end(),
                       [](char c) { return static_cast<uchar>(c) < 0x80; });
}

/// The flag says that the name is UTF-8, which old programs read only as ASCII.
Member deflatedMember(QByteArrayView name)
{
    return {.name = name.toByteArray(),
            .flags = isAscii(name) ? quint16(0) : kFlagUtf8,
            .method = kDeflated};
}

// The member in this package: keeps the encoding of the name, but not the form of the sizes.
Member copiedMember(const Member &source)
{
    Member member = source;
    member.flags &= kFlagUtf8;
    return member;
}

} // namespace

PackageWriter::PackageWriter(ByteSink &sink, const deflate::StreamOptions &options)
    : m_sink(sink)
    , m_stream(sink, options)
{
}

Result<void, Error> PackageWriter::checkName(QByteArrayView name) const
{
    if (name.isEmpty() || name.size() > kMaxNameBytes) {
        return Fault{Error::BadName};
    }
    return checkIsNew(name.toByteArray());
}

Result<void, Error> PackageWriter::checkIsNew(const QByteArray &name) const
{
    if (m_names.contains(name)) {
        return Fault{Error::NameTaken, QString::fromUtf8(name)};
    }
    return {};
}

// Write the local header of a member at the sink's position.
Result<void, Error> PackageWriter::startMember(const Member &member)
{
    assert(!m_open && !m_hasDirectory);
    if (auto good = checkName(member.name); !good) {
        return good.fault();
    }
    OpenMember open{member};
    open.member.headerOffset = m_sink.position();
    const QByteArray header = localHeader(open.member);
    open.dataOffset = open.member.headerOffset + header.size();
    if (!m_sink.write(header.data(), header.size())) {
        return Fault{Error::WriteFailed};
    }
    m_names.insert(open.member.name);
    m_open = std::move(open);
    return {};
}

Result<void, Error> PackageWriter::openMember(QByteArrayView name)
{
    if (auto started = startMember(deflatedMember(name)); !started) {
        return started.fault();
    }
    m_stream.begin();
    return {};
}

Result<std::span<char>, Error> PackageWriter::room(size_t n)
{
    auto span = m_stream.room(n);
    return span ? Result<std::span<char>, Error>(*span) : faultOf(span.fault());
}

Result<void, Error> PackageWriter::write(QByteArrayView bytes)
{
    if (auto done = m_stream.write({bytes.data(), static_cast<size_t>(bytes.size())}); !done) {
        return faultOf(done.fault());
    }
    return {};
}

Result<void, Error> PackageWriter::closeMember()
{
    assert(m_open);
    const auto totals = m_stream.finish();
    if (!totals) {
        return faultOf(totals.fault());
    }
    m_open->member.crc = totals->crc;
    m_open->member.size = totals->size;
    m_open->member.compressedSize = totals->compressedSize;
    if (auto done = completeHeader(); !done) {
        return done;
    }
    return enterDirectory();
}

// A local header has no room for sizes above 32 bits, and a reserved field for them would appear in
// every member of every small workbook. A member that has become so large gets a data descriptor
// after its data instead, and its header says so.
Result<void, Error> PackageWriter::completeHeader()
{
    Member &member = m_open->member;
    qint64 end = m_open->dataOffset + member.compressedSize;
    if (hasLargeSize(member)) {
        member.flags |= kFlagDescriptor;
        const QByteArray descriptor = dataDescriptor64(member);
        if (!writeAt(end, descriptor)) {
            return Fault{Error::WriteFailed};
        }
        end += descriptor.size();
    }
    if (!writeAt(member.headerOffset, localHeader(member)) || !m_sink.seek(end)) {
        return Fault{Error::WriteFailed};
    }
    return {};
}

bool PackageWriter::writeAt(qint64 offset, const QByteArray &bytes)
{
    return m_sink.seek(offset) && m_sink.write(bytes.data(), bytes.size());
}

// Add the open member to the directory.
Result<void, Error> PackageWriter::enterDirectory()
{
    if (m_sink.position() - m_flushedBytes >= kFlushBytes) {
        if (!m_sink.flush()) {
            return Fault{Error::WriteFailed};
        }
        m_flushedBytes = m_sink.position();
    }
    m_members.push_back(std::move(m_open->member));
    m_open.reset();
    return {};
}

Result<void, Error> PackageWriter::copyRaw(PackageReader &source, const Member &member)
{
    const auto raw = source.openRaw(member);
    if (!raw) {
        return raw.fault();
    }
    if (auto started = startMember(copiedMember(member)); !started) {
        return started;
    }
    if (auto copied = copyChunks(**raw); !copied) {
        // The bytes stay in the file, but not in the directory.
        m_names.erase(m_open->member.name);
        m_open.reset();
        return copied;
    }
    return enterDirectory();
}

Result<void, Error> PackageWriter::copyChunks(RawMemberStream &source)
{
    while (!m_stream.isStopped()) {
        const auto chunk = source.next();
        if (!chunk) {
            return chunk.fault();
        }
        if (chunk->isEmpty()) {
            return {};
        }
        if (!m_sink.write(chunk->data(), chunk->size())) {
            return Fault{Error::WriteFailed};
        }
    }
    return Fault{Error::Stopped};
}

Result<void, Error> PackageWriter::addRaw(const RawMember &raw)
{
    if (auto started = startMember(copiedMember(raw.member)); !started) {
        return started.fault();
    }
    if (!m_sink.write(raw.bytes.data(), raw.bytes.size())) {
        return Fault{Error::WriteFailed};
    }
    return enterDirectory();
}

Result<void, Error> PackageWriter::close()
{
    assert(!m_open && !m_hasDirectory);
    const qint64 offset = m_sink.position();
    QByteArray directory;
    for (const Member &member : m_members) {
        appendCentralEntry(member, directory);
    }
    const auto count = static_cast<qint64>(m_members.size());
    directory += endRecords(count, offset, directory.size());
    m_hasDirectory = true;
    if (!m_sink.write(directory.data(), directory.size()) || !m_sink.flush()) {
        return Fault{Error::WriteFailed};
    }
    return {};
}

RawMember deflateMember(QByteArrayView name, QByteArrayView bytes, deflate::Level level)
{
    MemorySink sink;
    deflate::DeflateStream stream(sink, {level, 0});
    stream.begin();
    // A memory sink does not fail and nothing stops this stream, so that a fault can only be a lack
    // of memory.
    const auto written = stream.write({bytes.data(), static_cast<size_t>(bytes.size())});
    const auto totals = stream.finish();
    if (!written || !totals) {
        throw std::bad_alloc();
    }
    RawMember raw{deflatedMember(name), sink.bytes()};
    raw.member.crc = totals->crc;
    raw.member.size = totals->size;
    raw.member.compressedSize = totals->compressedSize;
    return raw;
}

} // namespace corvanta::zip
