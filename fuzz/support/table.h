// A table for the fuzz targets of writers: columns and cells made of the bytes of an input.
//
// Missing cells, special numbers and long texts take few bytes, so that they are common.
#pragma once
#include "base/row_view.h"
#include "base/utf.h"
#include "fuzz/support/feed.h"

#include <deque>
#include <limits>

namespace corvanta {

/// `text` with U+FFFD for lone surrogates, which UTF-8 cannot hold.
inline std::u16string withoutLoneSurrogates(std::u16string_view text)
{
    std::string bytes(text.size() * kUtf8BytesPerUnit, '\0');
    const qsizetype n = utf16ToUtf8(text.data(), static_cast<qsizetype>(text.size()), bytes.data());
    std::u16string units(static_cast<size_t>(n), u'\0');
    units.resize(static_cast<size_t>(utf8ToUtf16(bytes.data(), n, units.data())));
    return units;
}

/// 1 to 6 columns, and rows up to the end of the feed. Threads: one at a time.
class FuzzTable
{
public:
    explicit FuzzTable(Feed &feed)
    {
        const int columns = 1 + feed.below(6);
        for (int i = 0; i < columns; ++i) {
            constexpr cell::Type kTypes[] = {cell::Type::Text, cell::Type::Double, cell::Type::Key};
            m_types.emplace_back(kTypes[feed.below(3)]);
            m_names.push_back(u'c' + feed.string(feed.below(8)));
        }
        while (!feed.isEmpty() && rowCount() < kMaxRows && m_units < kMaxUnits) {
            for (const MetaInfo &type : m_types) {
                addCell(type.cellType(), feed);
            }
        }
    }

    int rowCount() const { return static_cast<int>(m_cells.size() / m_types.size()); }
    const std::vector<QString> &names() const { return m_names; }
    /// Row `row`, from 0; names and types for any number in a table without rows.
    RowView row(int row) const
    {
        const size_t first = static_cast<size_t>(row) * m_types.size();
        return {first < m_cells.size() ? m_cells.data() + first : nullptr, m_names.data(),
                m_types.data(), static_cast<int>(m_types.size())};
    }

private:
    static constexpr int kMaxRows = 300;
    static constexpr size_t kMaxUnits = 400'000; // of all texts

    static quint32 keyOf(Feed &feed)
    {
        const quint8 form = feed.byte();
        return form == 0     ? cell::kMissingKey
               : form == 1   ? cell::kMissingKeyOther
               : form < 0xF0 ? form
                             : feed.value<quint32>();
    }

    static double doubleOf(Feed &feed)
    {
        using Limits = std::numeric_limits<double>;
        const quint8 form = feed.byte();
        constexpr double kSpecial[] = {0, Limits::quiet_NaN(), Limits::infinity(),
                                       -Limits::infinity(), -0.0};
        return form == 0     ? cell::missingDouble()
               : form < 5    ? kSpecial[form]
               : form < 0xF0 ? (form - 100) / 8.0
                             : feed.value<double>();
    }

    /// Empty and missing texts are different: std::nullopt is a missing one.
    static std::optional<std::u16string> textOf(Feed &feed)
    {
        const quint8 form = feed.byte();
        if (form == 0) {
            return std::nullopt;
        }
        if (form < 0xF0) {
            return feed.text(form - 1);
        }
        // A short text, many times.
        const std::u16string part = feed.text(5);
        std::u16string text;
        for (int i = 0; i < (form & 15) * 700; ++i) {
            text += part;
        }
        return text;
    }

    /// Memory for a cell whose address is `odd` after an even one, of exactly the cell's size: the
    /// sanitizer sees one byte more.
    uchar *room(size_t bytes, size_t odd)
    {
        std::vector<uchar> &memory = m_memory.emplace_back(bytes + odd);
        m_cells.push_back(memory.data() + odd);
        return memory.data() + odd;
    }

    void addCell(cell::Type type, Feed &feed)
    {
        switch (type) {
        case cell::Type::Key:
            storeNative(keyOf(feed), room(cell::kKeyBytes, 0));
            return;
        case cell::Type::Double:
            storeNative(doubleOf(feed), room(cell::kDoubleBytes, 0));
            return;
        case cell::Type::Text:
            break;
        }
        const auto text = textOf(feed);
        const size_t units = text ? text->size() : 0;
        const quint32 code = text ? cell::codeOfText(static_cast<qsizetype>(units)) : 0;
        const int lengthBytes = cell::lengthBytes(code);
        uchar *const begin = room(static_cast<size_t>(lengthBytes) + units * 2,
                                  static_cast<size_t>(lengthBytes) % 2);
        uchar *const out = cell::putLength(begin, code, lengthBytes);
        if (units > 0) {
            std::memcpy(out, text->data(), units * 2);
        }
        m_units += units;
    }

    std::vector<QString> m_names;
    std::vector<MetaInfo> m_types;
    std::deque<std::vector<uchar>> m_memory;
    std::vector<const uchar *> m_cells; // row by row
    size_t m_units = 0;
};

} // namespace corvanta
