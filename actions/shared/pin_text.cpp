#include "actions/shared/pin_text.h"

#include "base/utf.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace corvanta {

PinText::PinText(ActionItem &action, int column, Mode mode, const OneRow *first,
                 std::function<bool()> isInsideValue)
    : m_action(action)
    , m_column(column)
    , m_mode(mode)
    , m_isInsideValue(std::move(isInsideValue))
    , m_first(first)
{
}

const OneRow *PinText::takeRow()
{
    if (const OneRow *const first = std::exchange(m_first, nullptr)) {
        return first;
    }
    return m_action.getNextRowFromInPin(0);
}

bool PinText::nextRow()
{
    constexpr char16_t kMark = 0xFEFF;
    m_bytes.clear();
    m_at = 0;
    while ((m_row = takeRow()) != nullptr) {
        ++m_rowNumber;
        const unsigned short *units = nullptr;
        qsizetype n = m_row->col(m_column, &units);
        const auto *text = reinterpret_cast<const char16_t *>(units);
        // A tokenizer would decode the mark as a character, after the spaces.
        const bool isMarked = n > 0 && *text == kMark;
        text += isMarked ? 1 : 0;
        n -= isMarked ? 1 : 0;
        if (n > 0) {
            // One UTF-16 unit needs at most three bytes of UTF-8.
            constexpr auto kBefore = static_cast<size_t>(kSpaces);
            m_bytes.assign(kBefore + static_cast<size_t>(n) * 3, ' ');
            m_bytes.resize(kBefore +
                           static_cast<size_t>(utf16ToUtf8(text, n, m_bytes.data() + kBefore)));
            m_isSeparated = false;
            return true;
        }
    }
    return false;
}

/// A text of a stream is followed by spaces before the next row is taken: taking a row may wait,
/// and a tokenizer finds the end of a number only in the next byte.
qint64 PinText::read(void *buffer, qint64 n)
{
    if (m_at == m_bytes.size() && m_mode == Mode::Stream && !m_staysInRow) {
        if (!m_isSeparated && !m_isInsideValue()) {
            // A number at the top level ends here, while its row is still the current one.
            m_bytes.assign(kSpaces, ' ');
            m_at = 0;
            m_isSeparated = true;
        } else if (nextRow()) {
            // A value that continues must not be split by the spaces before the text.
            m_at = kSpaces;
        } else {
            return 0;
        }
    }
    const qint64 take = std::min(n, static_cast<qint64>(m_bytes.size() - m_at));
    std::memcpy(buffer, m_bytes.data() + m_at, static_cast<size_t>(take));
    m_at += static_cast<size_t>(take);
    return take;
}

} // namespace corvanta
