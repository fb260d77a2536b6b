// Texts of BIFF 2 to 5 are bytes in the code page of the workbook, after a length of 1 or 2 bytes.
// Texts of BIFF 8 (MS-XLS, 2.5.293 and 2.5.294) after their length:
//
//   flags 1: 01 units of 2 bytes, 04 phonetic, 08 rich | runs 2, if rich | phonetic bytes 4, if
//   phonetic | units | runs of 4 bytes | phonetic bytes
//
// Where a CONTINUE record begins inside the units, its first byte repeats the flag 01 for the rest.
// Compressed units are those below 0100.
#include "codecs/xls/record_text.h"

#include "base/bytes.h"
#include "base/utf.h"

#include <algorithm>

namespace corvanta::xls {

namespace {

constexpr quint8 kWide = 0x01;
constexpr quint8 kPhonetic = 0x04;
constexpr quint8 kRich = 0x08;
constexpr qint64 kRunBytes = 4;

/// The iconv name of a code page. Those of the Macintosh have names of their own.
QString encodingOf(int codePage)
{
    switch (codePage) {
    case 10000:
    case 32768:
        return QStringLiteral("MACINTOSH");
    case 10001:
        return QStringLiteral("SHIFT_JIS");
    case 10007:
        return QStringLiteral("MAC-CYRILLIC");
    case 10029:
        return QStringLiteral("MAC-CENTRALEUROPE");
    default:
        return QStringLiteral("CP%1").arg(codePage);
    }
}

encoding::TextDecoder decoderOf(Biff biff, int codePage)
{
    constexpr int kUtf16 = 1200; // no encoding of bytes
    constexpr int kAscii = 367;  // a part of Windows-1252
    const bool isUsed =
        biff != Biff::V8 && codePage != 0 && codePage != kUtf16 && codePage != kAscii;
    return isUsed ? encoding::TextDecoder::named(encodingOf(codePage))
                  : encoding::TextDecoder::windows1252();
}

/// Compressed units are the low bytes of UTF-16; no code page is involved.
void widen(const uchar *bytes, qint64 n, std::u16string *out)
{
    const size_t old = out->size();
    out->resize(old + static_cast<size_t>(n));
    std::copy(bytes, bytes + n, out->begin() + static_cast<std::ptrdiff_t>(old));
}

/// The units may be at odd addresses.
void copyWide(const uchar *bytes, qint64 n, std::u16string *out)
{
    const size_t old = out->size();
    out->resize(old + static_cast<size_t>(n));
    qFromLittleEndian<quint16>(bytes, n, out->data() + old);
}

} // namespace

ContinuedBytes::ContinuedBytes(RecordReader &reader, const Record &record, qint64 skipped)
    : m_reader(reader)
    , m_at(record.data + std::min(skipped, record.bytes))
    , m_end(record.data + record.bytes)
    , m_isShort(skipped > record.bytes)
{
}

/// Go to the next CONTINUE record that has data. False, and short, without one.
bool ContinuedBytes::nextPiece()
{
    Record record;
    while (left() == 0 && m_reader.nextId() == kContinue && m_reader.next(&record)) {
        m_at = record.data;
        m_end = record.data + record.bytes;
    }
    m_isShort = m_isShort || left() == 0;
    return left() > 0;
}

bool ContinuedBytes::atEnd()
{
    const bool wasShort = m_isShort;
    const bool isEnd = left() == 0 && !nextPiece();
    m_isShort = wasShort;
    return isEnd;
}

quint8 ContinuedBytes::u8()
{
    return left() > 0 || nextPiece() ? *m_at++ : 0;
}

quint16 ContinuedBytes::u16()
{
    const quint16 low = u8();
    return static_cast<quint16>(low | u8() << 8);
}

quint32 ContinuedBytes::u32()
{
    const quint32 low = u16();
    return low | static_cast<quint32>(u16()) << 16;
}

/// Across the borders of CONTINUE records.
void ContinuedBytes::skip(qint64 n)
{
    while (n > 0 && (left() > 0 || nextPiece())) {
        const qint64 take = std::min(n, left());
        m_at += take;
        n -= take;
    }
}

QByteArrayView ContinuedBytes::bytes(qint64 n, QByteArray *kept)
{
    if (n <= left()) {
        m_at += n;
        return {m_at - n, n};
    }
    while (n > 0 && (left() > 0 || nextPiece())) {
        const qint64 take = std::min(n, left());
        kept->append(reinterpret_cast<const char *>(m_at), take);
        m_at += take;
        n -= take;
    }
    return *kept;
}

void ContinuedBytes::units(qint64 n, bool isWide, std::u16string *out)
{
    while (n > 0) {
        if (left() == 0) {
            if (!nextPiece()) {
                return;
            }
            // The width may change where the text continues.
            isWide = (u8() & kWide) != 0;
            continue;
        }
        const qint64 take = std::min(n, isWide ? left() / 2 : left());
        if (take == 0) { // half a unit: no writer splits one
            m_at = m_end;
            m_isShort = true;
            continue;
        }
        if (isWide) {
            copyWide(m_at, take, out);
        } else {
            widen(m_at, take, out);
        }
        m_at += isWide ? 2 * take : take;
        n -= take;
    }
}

TextReader::TextReader(Biff biff, int codePage)
    : m_biff(biff)
    , m_decoder(decoderOf(biff, codePage))
{
}

/// Returns whether all bytes are characters of the code page.
bool TextReader::appendDecoded(QByteArrayView bytes, std::u16string *out) const
{
    const size_t old = out->size();
    out->resize(old + static_cast<size_t>(bytes.size()) * 2);
    const qsizetype units = m_decoder.decode(bytes.data(), bytes.size(), out->data() + old);
    out->resize(old + static_cast<size_t>(units));
    return out->find(kReplacementCharacter, old) == std::u16string::npos;
}

bool TextReader::append(ContinuedBytes &in, qint64 n, std::u16string *out) const
{
    return m_biff == Biff::V8 ? appendUnits(in, n, out) : appendBytes(in, n, out);
}

bool TextReader::appendBytes(ContinuedBytes &in, qint64 n, std::u16string *out) const
{
    QByteArray kept;
    const QByteArrayView bytes = in.bytes(n, &kept);
    return appendDecoded(bytes, out) && !in.isShort();
}

bool TextReader::appendUnits(ContinuedBytes &in, qint64 n, std::u16string *out)
{
    const quint8 flags = in.u8();
    const qint64 runs = (flags & kRich) != 0 ? in.u16() : 0;
    const qint64 phoneticBytes = (flags & kPhonetic) != 0 ? in.u32() : 0;
    in.units(n, (flags & kWide) != 0, out);
    in.skip(runs * kRunBytes + phoneticBytes);
    return !in.isShort();
}

QString TextReader::shortName(ContinuedBytes &in) const
{
    std::u16string name;
    append(in, in.u8(), &name);
    return QString::fromStdU16String(name);
}

} // namespace corvanta::xls
