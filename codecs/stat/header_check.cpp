// What the checks of all formats share: a reader that stops at the first fault, and the choice of
// the check.
#include "codecs/stat/header_check.h"

#include "codecs/stat/checked_reader.h"

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
    if (n < 0 || n > remaining()) {
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
    m_position = offset;
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
    return {};
}

} // namespace corvanta::stat
