// The table of shared texts (SST) of a BIFF 8 workbook.
#pragma once
#include "codecs/xls/record_text.h"

#include <string>
#include <string_view>
#include <vector>

namespace corvanta::xls {

/// All texts of the workbook in one block of memory: about two bytes per character, and eight per
/// text. Threads: one at a time.
class SharedTexts
{
public:
    /// Read the SST record, which was read last from `reader`, and those that continue it, up to
    /// their end: the number of texts that the record claims is not trusted. Replaces all texts.
    void read(RecordReader &reader, const Record &record, const TextReader &rules);

    /// The text of a number, counted from 0, or one without data if there is none. Valid until the
    /// next read().
    std::u16string_view at(size_t number) const
    {
        return number < m_ends.size() ? view(number) : std::u16string_view{};
    }
    /// The texts that were found, which may be fewer than the record claims.
    size_t size() const { return m_ends.size(); }

private:
    /// The text of a number that exists.
    std::u16string_view view(size_t number) const
    {
        const size_t begin = number == 0 ? 0 : m_ends[number - 1];
        return std::u16string_view(m_units).substr(begin, m_ends[number] - begin);
    }

    std::u16string m_units;
    std::vector<size_t> m_ends; // of each text in m_units
};

} // namespace corvanta::xls
