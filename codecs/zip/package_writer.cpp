#include "codecs/zip/package_writer.h"

#include "codecs/zip/zip_format.h"

#include <algorithm>
#include <new>

namespace corvanta::zip {

namespace {

constexpr qsizetype kMaxNameBytes = 0xFFFF;
// What a sink that collects its blocks may hold before finished members are flushed.
constexpr qint64 kFlushBytes = 5 * 1024 * 1024;

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

Member deflatedMember(QByteArrayView name)
{
    Member member;
    member.name = name.toByteArray();
    member.flags = isAscii(name) ? 0 : kFlagUtf8;
    member.method = kDeflated;
    return member;
}

// What a member of another package keeps here: how its name is written, not how its sizes were
// told.
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
    const QByteArray key = name.toByteArray();
    if (m_names.contains(key)) {
        return Fault{Error::NameTaken, QString::fromUtf8(key)};
    }
    return {};
}

// Write the local header of a member that goes to the sink's position.
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
    if (!span) {
        return faultOf(span.fault());
    }
    return *span;
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
    if (!m_open->isComplete && !completeHeader()) {
        return Fault{Error::WriteFailed};
    }
    m_open->isComplete = true;
    return enterDirectory();
}

// A header has no room for sizes of more than 32 bits, and a field kept free for them would stand
// in every member of every small workbook. A member that has grown so large gets a data descriptor
// behind it instead, and its header says so.
bool PackageWriter::completeHeader()
{
    Member &member = m_open->member;
    qint64 end = m_open->dataOffset + member.compressedSize;
    if (hasLargeSize(member)) {
        member.flags |= kFlagDescriptor;
        const QByteArray descriptor = dataDescriptor64(member);
        if (!writeAt(end, descriptor)) {
            return false;
        }
        end += descriptor.size();
    }
    return writeAt(member.headerOffset, localHeader(member)) && m_sink.seek(end);
}

bool PackageWriter::writeAt(qint64 offset, const QByteArray &bytes)
{
    return m_sink.seek(offset) && m_sink.write(bytes.data(), bytes.size());
}

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
    if (!m_rawSource) {
        auto raw = source.openRaw(member);
        if (!raw) {
            return raw.fault();
        }
        if (auto started = startMember(copiedMember(member)); !started) {
            return started.fault();
        }
        m_rawSource = std::move(*raw);
        m_rawChunk = {};
    }
    if (auto copied = copyChunks(); !copied) {
        if (copied.fault().code !=
            Error::WriteFailed) { // what was written stays outside the directory
            m_rawSource.reset();
            m_names.remove(m_open->member.name);
            m_open.reset();
        }
        return copied.fault();
    }
    if (auto entered = enterDirectory(); !entered) {
        return entered.fault();
    }
    m_rawSource.reset();
    return {};
}

Result<void, Error> PackageWriter::copyChunks()
{
    while (!m_open->isComplete) {
        if (!m_rawChunk.isEmpty() && !m_sink.write(m_rawChunk.data(), m_rawChunk.size())) {
            return Fault{Error::WriteFailed};
        }
        m_rawChunk = {};
        if (m_stream.isStopped()) {
            return Fault{Error::Stopped};
        }
        const auto chunk = m_rawSource->next();
        if (!chunk) {
            return chunk.fault();
        }
        m_rawChunk = *chunk;
        m_open->isComplete = chunk->isEmpty();
    }
    return {};
}

Result<void, Error> PackageWriter::addRaw(const RawMember &raw)
{
    assert(!m_open || m_open->member.name == raw.member.name);
    if (!m_open) {
        if (auto started = startMember(copiedMember(raw.member)); !started) {
            return started.fault();
        }
    }
    if (!m_open->isComplete && !m_sink.write(raw.bytes.data(), raw.bytes.size())) {
        return Fault{Error::WriteFailed};
    }
    m_open->isComplete = true;
    return enterDirectory();
}

Result<void, Error> PackageWriter::close()
{
    assert(!m_open);
    if (!m_hasDirectory) {
        const qint64 offset = m_sink.position();
        QByteArray directory;
        for (const Member &member : m_members) {
            appendCentralEntry(member, directory);
        }
        const auto count = static_cast<qint64>(m_members.size());
        directory += endRecords(count, offset, directory.size());
        if (!m_sink.write(directory.data(), directory.size())) {
            return Fault{Error::WriteFailed};
        }
        m_hasDirectory = true;
    }
    if (!m_sink.flush()) {
        return Fault{Error::WriteFailed};
    }
    return {};
}

RawMember deflateMember(QByteArrayView name, QByteArrayView bytes, deflate::Level level)
{
    MemorySink sink;
    deflate::DeflateStream stream(sink, {level, 0});
    stream.begin();
    // Memory refuses nothing, and nobody stops this stream: only bad_alloc can come, as a fault.
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
