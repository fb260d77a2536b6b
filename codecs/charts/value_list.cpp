// The texts are stored without separators; their lengths are in an array of their own:
//
//   bytes     "Jan" "" "March"        UTF-8
//   lengths    3     0  5             in bytes, 32 bits each
#include "codecs/charts/value_list.h"

#include "base/utf.h"

namespace corvanta::charts {

namespace {

/// A surrogate at `i` that has no partner.
bool isLoneSurrogate(QStringView text, qsizetype i)
{
    const bool hasLow = i + 1 < text.size() && text[i + 1].isLowSurrogate();
    const bool hasHigh = i > 0 && text[i - 1].isHighSurrogate();
    return (text[i].isHighSurrogate() && !hasLow) || (text[i].isLowSurrogate() && !hasHigh);
}

/// Whether XML 1.0 forbids a unit: most control characters, U+FFFE, U+FFFF, half a pair.
bool isForbidden(QStringView text, qsizetype i)
{
    const char16_t unit = text[i].unicode();
    const bool isControl = unit < u' ' && unit != u'\t' && unit != u'\n' && unit != u'\r';
    return isControl || unit >= 0xFFFE || (unit >= 0xD800 && isLoneSurrogate(text, i));
}

bool hasForbidden(QStringView text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isForbidden(text, i)) {
            return true;
        }
    }
    return false;
}

} // namespace

void ValueList::append(QStringView text)
{
    const QStringView trimmed = text.trimmed();
    if (!m_firstForbidden && hasForbidden(trimmed)) {
        m_firstForbidden = size();
    }
    const size_t old = m_bytes.size();
    const auto room = static_cast<size_t>(trimmed.size() * kUtf8BytesPerUnit);
    // Growing by the exact size would copy all texts each time.
    if (m_bytes.capacity() - old < room) {
        m_bytes.reserve(std::max(old + room, old + old / 2));
    }
    m_bytes.resize(old + room);
    const qsizetype used = utf16ToUtf8(trimmed.utf16(), trimmed.size(), m_bytes.data() + old);
    m_bytes.resize(old + static_cast<size_t>(used));
    m_lengths.push_back(static_cast<quint32>(used));
}

} // namespace corvanta::charts
