// A gzip member (RFC 1952):
//
//   0  1F 8B   2 method (8)   3 flags   4 u32 time   8 extra flags   9 system
//   then, by flag:  4: u16 length and as many bytes;  8: name, NUL;  16: comment, NUL;  2: u16 CRC
//   then the deflate stream, u32 CRC-32 and u32 size (modulo 2^32) of the unpacked bytes
#include "base/bytes.h"
#include "codecs/deflate/crc32.h"
#include "codecs/deflate/inflater.h"
#include "codecs/gzip/disk_file.h"
#include "codecs/gzip/input_source.h"

#include <vector>

namespace corvanta::input {

namespace {

constexpr size_t kInputBytes = 256 * 1024;
constexpr size_t kFixedHeaderBytes = 10;
constexpr size_t kTrailerBytes = 8;
constexpr size_t kLookAheadBytes = 8;
enum Flag : uchar { HasHeaderCrc = 2, HasExtra = 4, HasName = 8, HasComment = 16, Reserved = 0xE0 };

class GzipSource final : public InputSource
{
public:
    explicit GzipSource(std::unique_ptr<DiskFile> file)
        : m_file(std::move(file))
        , m_inflater(deflate::makeInflater())
        , m_input(kInputBytes + kLookAheadBytes)
    {
    }

    qint64 read(void *buffer, qint64 n) override;
    qint64 size() override { return -1; }
    bool seek(qint64 offset) override;
    qint64 progressPosition() const override { return m_file->position(); }

private:
    enum class Stage { FirstMember, NextMember, Body, Trailer, Plain, End };

    bool need(size_t n);
    bool refill();
    std::span<const char> available() const { return {m_input.data() + m_at, m_end - m_at}; }
    qint64 startMember();
    bool skipHeader();
    bool skipZeroEnded();
    qint64 readBody(char *out, qint64 n);
    qint64 readPlain(char *out, qint64 n);
    qint64 checkTrailer();
    qint64 cutOff() { return fail(QStringLiteral("the gzip data ends too early")); }

    std::unique_ptr<DiskFile> m_file;
    std::unique_ptr<deflate::Inflater> m_inflater;
    std::vector<char> m_input;
    size_t m_at = 0;
    size_t m_end = 0;
    Stage m_stage = Stage::FirstMember;
    quint32 m_crc = 0;
    quint32 m_size = 0;
};

/// Bring at least `n` unread bytes into the buffer; false when the file ends before (see
/// failure()).
bool GzipSource::need(size_t n)
{
    while (m_end - m_at < n) {
        if (!refill()) {
            return false;
        }
    }
    return true;
}

/// Read more behind what is unread; false at the end of the file or after a failure.
bool GzipSource::refill()
{
    // The last bytes stay in front: the inflater may give them back.
    const size_t dropped = m_at - std::min(m_at, kLookAheadBytes);
    std::copy(m_input.begin() + static_cast<qint64>(dropped),
              m_input.begin() + static_cast<qint64>(m_end), m_input.begin());
    m_end -= dropped;
    m_at -= dropped;
    const qint64 got =
        m_file->read(m_input.data() + m_end, static_cast<qint64>(m_input.size() - m_end));
    if (got < 0) {
        fail(QStringLiteral("the system reports a read error"));
    }
    m_end += static_cast<size_t>(std::max<qint64>(got, 0));
    return got > 0;
}

bool GzipSource::skipZeroEnded()
{
    char last = 1;
    while (last != 0 && need(1)) {
        last = m_input[m_at++];
    }
    return last == 0;
}

bool GzipSource::skipHeader()
{
    if (!need(kFixedHeaderBytes)) {
        return false;
    }
    const auto flags = static_cast<uchar>(m_input[m_at + 3]);
    m_at += kFixedHeaderBytes;
    if ((flags & HasExtra) != 0) {
        if (!need(2)) {
            return false;
        }
        const size_t extraBytes = loadLE<quint16>(m_input.data() + m_at);
        if (!need(2 + extraBytes)) {
            return false;
        }
        m_at += 2 + extraBytes;
    }
    if (((flags & HasName) != 0 && !skipZeroEnded()) ||
        ((flags & HasComment) != 0 && !skipZeroEnded())) {
        return false;
    }
    if ((flags & HasHeaderCrc) != 0) {
        if (!need(2)) {
            return false;
        }
        m_at += 2;
    }
    return true;
}

/// 0 when a member starts or the data end here, negative after a failure.
qint64 GzipSource::startMember()
{
    const bool isFirst = m_stage == Stage::FirstMember;
    const bool hasMagic = need(2) && static_cast<uchar>(m_input[m_at]) == 0x1F &&
                          static_cast<uchar>(m_input[m_at + 1]) == 0x8B;
    if (!failure().isEmpty()) {
        return -1;
    }
    if (!hasMagic) {
        m_stage = isFirst ? Stage::Plain : Stage::End;
        return 0;
    }
    if (!need(4)) {
        return cutOff();
    }
    if (m_input[m_at + 2] != 8 || (static_cast<uchar>(m_input[m_at + 3]) & Reserved) != 0) {
        return fail(QStringLiteral("its gzip variant is not known"));
    }
    if (!skipHeader()) {
        return failure().isEmpty() ? cutOff() : -1;
    }
    m_inflater->reset();
    m_crc = 0;
    m_size = 0;
    m_stage = Stage::Body;
    return 0;
}

qint64 GzipSource::readBody(char *out, qint64 n)
{
    while (true) {
        const auto step = m_inflater->inflate(available(), {out, static_cast<size_t>(n)});
        m_at = static_cast<size_t>(static_cast<qint64>(m_at) + step.consumed);
        if (step.state == deflate::Inflater::State::Bad) {
            return fail(QStringLiteral("the gzip data is damaged"));
        }
        if (step.state == deflate::Inflater::State::End) {
            m_stage = Stage::Trailer;
        }
        if (step.produced > 0 || m_stage == Stage::Trailer) {
            m_crc = deflate::crc32(m_crc, {out, step.produced});
            m_size += static_cast<quint32>(step.produced);
            return static_cast<qint64>(step.produced);
        }
        if (m_at == m_end && !refill()) {
            return failure().isEmpty() ? cutOff() : -1;
        }
    }
}

qint64 GzipSource::checkTrailer()
{
    if (!need(kTrailerBytes)) {
        return failure().isEmpty() ? cutOff() : -1;
    }
    if (loadLE<quint32>(m_input.data() + m_at) != m_crc ||
        loadLE<quint32>(m_input.data() + m_at + 4) != m_size) {
        return fail(QStringLiteral("the gzip data does not agree with its checksum"));
    }
    m_at += kTrailerBytes;
    m_stage = Stage::NextMember;
    return 0;
}

qint64 GzipSource::readPlain(char *out, qint64 n)
{
    if (m_at == m_end && !refill()) {
        m_stage = Stage::End;
        return failure().isEmpty() ? 0 : -1;
    }
    const auto take = std::min(static_cast<size_t>(n), m_end - m_at);
    std::copy_n(m_input.begin() + static_cast<qint64>(m_at), take, out);
    m_at += take;
    return static_cast<qint64>(take);
}

qint64 GzipSource::read(void *buffer, qint64 n)
{
    qint64 got = failure().isEmpty() ? 0 : -1;
    while (got == 0 && n > 0 && m_stage != Stage::End) {
        switch (m_stage) {
        case Stage::FirstMember:
        case Stage::NextMember:
            got = startMember();
            break;
        case Stage::Body:
            got = readBody(static_cast<char *>(buffer), n);
            break;
        case Stage::Trailer:
            got = checkTrailer();
            break;
        case Stage::Plain:
            got = readPlain(static_cast<char *>(buffer), n);
            break;
        case Stage::End:
            break;
        }
    }
    return got;
}

bool GzipSource::seek(qint64 offset)
{
    if (!m_file->seek(0)) {
        return false;
    }
    clearFailure();
    m_at = m_end = 0;
    m_stage = Stage::FirstMember;
    return skipBytes(*this, offset);
}

} // namespace

Opened openGzip(const QString &path)
{
    auto file = DiskFile::open(path);
    if (!file) {
        return Fault<OpenError>{OpenError::CannotOpen};
    }
    return std::unique_ptr<InputSource>(std::make_unique<GzipSource>(std::move(file)));
}

} // namespace corvanta::input
