// What the checks of all formats share: a reader that stops at the first fault, and the choice of
// the check. The bytes by which the formats are recognised:
//
//   .sas7bdat  12  C2 EA 81 60; a catalogue (.sas7bcat) has C2 EA 81 63
//   .sav        0  "$FL2" or "$FL3"
//   .por      456  "SPSSPORT", later if lines end before it
//   .dta        0  "<stata_dta>", or version (102 to 115), byte order (1 or 2), 1
//   .xpt        0  "HEADER RECORD*******LIB"
#include "codecs/stat/check/header_check.h"

#include "codecs/stat/check/checked_reader.h"

namespace corvanta::stat {

void CheckedReader::read(void *out, qint64 n)
{
    if (!m_isGood || n > remaining()) {
        m_isGood = false;
        return;
    }
    m_isGood = readFully(m_source, out, n) == n;
    m_hasFailed = !m_isGood;
    m_position += n;
}

/// The number is compared with the file before the memory is allocated.
QByteArray CheckedReader::bytes(qint64 n)
{
    if (!m_isGood || n < 0 || n > remaining()) {
        m_isGood = false;
        return {};
    }
    QByteArray bytes(n, Qt::Uninitialized);
    read(bytes.data(), n);
    return bytes;
}

void CheckedReader::seek(qint64 offset)
{
    m_isGood = m_isGood && offset >= 0 && offset <= m_size && m_source.seek(offset);
    // After a failure the position is not used.
    m_position = m_isGood ? offset : m_size;
}

Result<void, Error> checkHeader(ByteSource &source, Format format)
{
    if (source.size() == 0) {
        return Fault{Error::CannotOpen, QStringLiteral("the file is empty")};
    }
    switch (format) {
    case Format::Sas:
        return checkSas(source);
    case Format::SpssSav:
        return checkSav(source);
    case Format::Stata:
        return checkStata(source);
    case Format::SpssPor:
        return checkPor(source);
    case Format::SasTransport:
        break;
    }
    return checkTransport(source);
}

// ---- Recognition.

namespace {

constexpr qint64 kStartBytes = 600;

QByteArray sasMagic(const QByteArray &start)
{
    return start.mid(12, 4);
}

bool isStata(const QByteArray &start)
{
    constexpr char kFirst = 102;
    constexpr char kLast = 115;
    const bool isOld = start.size() > 4 && start[0] >= kFirst && start[0] <= kLast &&
                       (start[1] == 1 || start[1] == 2) && start[2] == 1;
    return isOld || start.startsWith("<stata_dta>");
}

bool isPor(const QByteArray &start)
{
    constexpr qsizetype kMarkAt = 456;
    return start.indexOf("SPSSPORT", kMarkAt) >= 0;
}

QByteArray startOf(ByteSource &source)
{
    QByteArray start(kStartBytes, '\0');
    const qint64 n = source.seek(0) ? readFully(source, start.data(), kStartBytes) : -1;
    return start.first(n < 0 ? 0 : n);
}

} // namespace

std::optional<Format> formatOfContent(ByteSource &source)
{
    const QByteArray start = startOf(source);
    if (sasMagic(start) == "\xC2\xEA\x81\x60") {
        return Format::Sas;
    }
    if (start.startsWith("$FL2") || start.startsWith("$FL3")) {
        return Format::SpssSav;
    }
    if (isStata(start)) {
        return Format::Stata;
    }
    if (start.startsWith("HEADER RECORD*******LIB")) {
        return Format::SasTransport;
    }
    return isPor(start) ? std::optional(Format::SpssPor) : std::nullopt;
}

bool isCatalogue(ByteSource &source)
{
    return sasMagic(startOf(source)) == "\xC2\xEA\x81\x63";
}

QString nameOf(Format format)
{
    switch (format) {
    case Format::Sas:
        return QStringLiteral("a SAS data set (.sas7bdat)");
    case Format::SpssSav:
        return QStringLiteral("an SPSS file (.sav)");
    case Format::SpssPor:
        return QStringLiteral("an SPSS portable file (.por)");
    case Format::Stata:
        return QStringLiteral("a Stata file (.dta)");
    case Format::SasTransport:
        break;
    }
    return QStringLiteral("a SAS transport file (.xpt)");
}

} // namespace corvanta::stat
