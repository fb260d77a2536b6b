// Each label is made a cell once; see base/cell.h for the layout:
//
//   code of the length (1 to 4 bytes), UTF-16 units
//
// Numbers are found by their bits, texts by their bytes in the encoding of the file, so that a
// search neither decodes nor rounds.
#include "codecs/stat/value_labels.h"

#include "base/cell.h"

#include <bit>
#include <cstring>

namespace corvanta::stat {

namespace {

/// The bytes of a text cell.
QByteArray textCell(const QString &text)
{
    const quint32 code = cell::codeOfText(text.size());
    const int lengthBytes = cell::lengthBytes(code);
    QByteArray bytes(lengthBytes + text.size() * 2, Qt::Uninitialized);
    uchar *const units =
        cell::putLength(reinterpret_cast<uchar *>(bytes.data()), code, lengthBytes);
    std::memcpy(units, text.constData(), static_cast<size_t>(text.size()) * 2);
    return bytes;
}

quint64 keyOf(double number)
{
    return std::bit_cast<quint64>(number + 0.0); // -0 and 0 are one value
}

/// The bytes of the cell of a key; null if the map does not have it.
template <class Map> const uchar *cellOf(const Map &map, const typename Map::key_type &key)
{
    const auto found = map.find(key);
    return found == map.end() ? nullptr
                              : reinterpret_cast<const uchar *>(found->second.constData());
}

} // namespace

ValueLabels::ValueLabels(const LabelSet &set)
{
    for (const LabelSet::Entry &entry : set.entries) {
        if (entry.isText) {
            m_byText.emplace(entry.text, textCell(entry.label));
        } else if (entry.tag != 0) {
            m_tags += entry.tag;
        } else {
            m_byNumber.emplace(keyOf(entry.number), textCell(entry.label));
        }
    }
}

const uchar *ValueLabels::find(double number) const
{
    return cellOf(m_byNumber, keyOf(number));
}

const uchar *ValueLabels::find(std::string_view text) const
{
    return cellOf(m_byText,
                  QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size())));
}

} // namespace corvanta::stat
