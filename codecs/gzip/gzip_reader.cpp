// A gzip member (RFC 1952, section 2.3). Numbers are little-endian:
//
//   offset  bytes
//        0      2  1F 8B
//        2      1  method: 8 is deflate
//        3      1  flags: 2 header CRC, 4 extra field, 8 name, 16 comment, the top 3 bits reserved
//        4      4  modification time
//        8      1  extra flags
//        9      1  operating system
//       10         extra field: u16 length and as many bytes (flag 4)
//                  file name, zero-terminated (flag 8)
//                  comment, zero-terminated (flag 16)
//                  u16 header CRC (flag 2)
//                  deflate stream (RFC 1951)
//                  u32 CRC-32 of the content, u32 size of the content modulo 2^32
//
// Members follow each other without padding.
#include "codecs/gzip/gzip_reader.h"

#include "base/bytes.h"
#include "codecs/deflate/crc32.h"

#include <algorithm>

namespace corvanta::gzip {

namespace {

constexpr size_t kInputBytes = size_t(256) * 1024;
constexpr size_t kFixedHeaderBytes = 10;
constexpr size_t kCheckedHeaderBytes = 4; // magic number, method and flags
constexpr size_t kTrailerBytes = 8;
constexpr size_t kLookAheadBytes = 8;
constexpr uchar kMagic[] = {0x1F, 0x8B};
constexpr uchar kDeflateMethod = 8;
enum Flag : uchar { HasHeaderCrc = 2, HasExtra = 4, HasName = 8, HasComment = 16, Reserved = 0xE0 };

Fault<Error> faultOf(Error error)
{
    switch (error) {
    case Error::Unreadable:
        return {error, QStringLiteral("the system reports a read error")};
    case Error::EndsTooEarly:
        return {error, QStringLiteral("the gzip data ends too early")};
    case Error::UnknownVariant:
        return {error, QStringLiteral("its gzip variant is not known")};
    case Error::BadData:
        return {error, QStringLiteral("the gzip data is damaged")};
    case Error::BadChecksum:
        break;
    }
    return {error, QStringLiteral("the gzip data does not agree with its checksum")};
}

} // namespace

Result<std::unique_ptr<Reader>, Error> Reader::open(ByteSource &source)
{
    return std::unique_ptr<Reader>(new Reader(source));
}

Reader::Reader(ByteSource &source)
    : m_source(source)
    , m_inflater(deflate::makeInflater())
    , m_input(kInputBytes + kLookAheadBytes)
{
}

/// Read more bytes after the unread ones. Returns false at the end of the source.
Result<bool, Error> Reader::refill()
{
    // Keep the last consumed bytes: the inflater may give them back.
    const size_t dropped = m_at - std::min(m_at, kLookAheadBytes);
    std::copy(m_input.begin() + static_cast<qint64>(dropped),
              m_input.begin() + static_cast<qint64>(m_end), m_input.begin());
    m_end -= dropped;
    m_at -= dropped;
    const qint64 got =
        m_source.read(m_input.data() + m_end, static_cast<qint64>(m_input.size() - m_end));
    if (got < 0) {
        return faultOf(Error::Unreadable);
    }
    m_end += static_cast<size_t>(got);
    return got > 0;
}

/// Read until `n` bytes are unread. Returns false if the source ends before.
Result<bool, Error> Reader::has(size_t n)
{
    while (unreadBytes() < n) {
        auto more = refill();
        if (!more || !*more) {
            return more;
        }
    }
    return true;
}

/// has() inside a member, where the end of the source is a fault.
Result<void, Error> Reader::require(size_t n)
{
    const auto there = has(n);
    if (!there) {
        return there.fault();
    }
    return *there ? Result<void, Error>() : faultOf(Error::EndsTooEarly);
}

Result<void, Error> Reader::skipZeroTerminated()
{
    char last = 1;
    while (last != 0) {
        if (auto there = require(1); !there) {
            return there;
        }
        last = m_input[m_at++];
    }
    return {};
}

Result<void, Error> Reader::skipExtraField()
{
    if (auto there = require(2); !there) {
        return there;
    }
    const size_t fieldBytes = 2 + size_t(loadLE<quint16>(unread()));
    if (auto there = require(fieldBytes); !there) {
        return there;
    }
    m_at += fieldBytes;
    return {};
}

Result<void, Error> Reader::skipHeader()
{
    auto skipped = require(kFixedHeaderBytes);
    if (!skipped) {
        return skipped;
    }
    const auto flags = static_cast<uchar>(unread()[3]);
    m_at += kFixedHeaderBytes;
    if ((flags & HasExtra) != 0) {
        skipped = skipExtraField();
    }
    for (const Flag text : {HasName, HasComment}) {
        if (skipped && (flags & text) != 0) {
            skipped = skipZeroTerminated();
        }
    }
    if (skipped && (flags & HasHeaderCrc) != 0) {
        skipped = require(2);
        m_at += skipped ? 2 : 0;
    }
    return skipped;
}

/// Read the header of a member, or find that the data is plain or ends here.
Result<void, Error> Reader::startMember()
{
    const auto hasTwo = has(sizeof kMagic);
    if (!hasTwo) {
        return hasTwo.fault();
    }
    // A file that was cut after its first byte, and no plain text.
    if (m_stage == Stage::FirstMember && unreadBytes() == 1 &&
        static_cast<uchar>(*unread()) == kMagic[0]) {
        return faultOf(Error::EndsTooEarly);
    }
    if (!*hasTwo || !std::equal(std::begin(kMagic), std::end(kMagic),
                                reinterpret_cast<const uchar *>(unread()))) {
        m_stage = m_stage == Stage::FirstMember ? Stage::Plain : Stage::Rest;
        return {};
    }
    if (auto there = require(kCheckedHeaderBytes); !there) {
        return there;
    }
    if (unread()[2] != kDeflateMethod || (static_cast<uchar>(unread()[3]) & Reserved) != 0) {
        return faultOf(Error::UnknownVariant);
    }
    if (auto skipped = skipHeader(); !skipped) {
        return skipped;
    }
    m_inflater->reset();
    m_crc = 0;
    m_size = 0;
    m_stage = Stage::Body;
    return {};
}

Result<qint64, Error> Reader::readBody(char *out, qint64 n)
{
    using State = deflate::Inflater::State;
    while (true) {
        const auto step =
            m_inflater->inflate({unread(), unreadBytes()}, {out, static_cast<size_t>(n)});
        m_at = static_cast<size_t>(static_cast<qint64>(m_at) + step.consumed);
        if (step.state == State::Bad) {
            return faultOf(Error::BadData);
        }
        m_stage = step.state == State::End ? Stage::Trailer : Stage::Body;
        if (step.produced > 0 || m_stage == Stage::Trailer) {
            m_crc = deflate::crc32(m_crc, {out, step.produced});
            m_size += static_cast<quint32>(step.produced);
            return static_cast<qint64>(step.produced);
        }
        if (auto there = require(1); !there) {
            return there.fault();
        }
    }
}

Result<void, Error> Reader::checkTrailer()
{
    if (auto there = require(kTrailerBytes); !there) {
        return there;
    }
    if (loadLE<quint32>(unread()) != m_crc || loadLE<quint32>(unread() + 4) != m_size) {
        return faultOf(Error::BadChecksum);
    }
    m_at += kTrailerBytes;
    m_stage = Stage::NextMember;
    return {};
}

Result<qint64, Error> Reader::readPlain(char *out, qint64 n)
{
    const auto there = has(1);
    if (!there) {
        return there.fault();
    }
    const size_t take = std::min(static_cast<size_t>(n), unreadBytes());
    std::copy_n(unread(), take, out);
    m_at += take;
    m_stage = take > 0 ? Stage::Plain : Stage::End;
    return static_cast<qint64>(take);
}

/// Read what follows the last member, to know whether it is more than padding.
Result<void, Error> Reader::skipRest()
{
    qint64 restBytes = 0;
    bool padding = true;
    auto more = has(1);
    for (; more && *more; more = has(1)) {
        padding = padding && std::all_of(unread(), unread() + unreadBytes(),
                                         [](char byte) { return byte == 0; });
        restBytes += static_cast<qint64>(unreadBytes());
        m_at = m_end;
    }
    if (!more) {
        return more.fault();
    }
    m_ignoredBytes = padding ? 0 : restBytes;
    m_stage = Stage::End;
    return {};
}

/// Continue with the current stage. Returns 0 if the stage had no content.
Result<qint64, Error> Reader::step(char *out, qint64 n)
{
    if (m_stage == Stage::Body) {
        return readBody(out, n);
    }
    if (m_stage == Stage::Plain) {
        return readPlain(out, n);
    }
    auto done = m_stage == Stage::Trailer ? checkTrailer()
                : m_stage == Stage::Rest  ? skipRest()
                                          : startMember();
    if (!done) {
        return done.fault();
    }
    return 0;
}

Result<qint64, Error> Reader::read(char *out, qint64 n)
{
    qint64 produced = 0;
    while (!m_fault && produced == 0 && n > 0 && m_stage != Stage::End) {
        auto got = step(out, n);
        if (got) {
            produced = *got;
        } else {
            m_fault = got.fault();
        }
    }
    if (m_fault) {
        return *m_fault;
    }
    return produced;
}

} // namespace corvanta::gzip
