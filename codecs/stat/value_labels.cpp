#include "codecs/stat/value_labels.h"

#include "base/cell.h"

#include <bit>
#include <cstring>

namespace corvanta::stat {

namespace {

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

const uchar *bytesOf(const QByteArray *cell)
{
    return cell == nullptr ? nullptr : reinterpret_cast<const uchar *>(cell->constData());
}

template <class Hash, class Key> const QByteArray *findIn(const Hash &hash, const Key &key)
{
    const auto found = hash.constFind(key);
    return found == hash.constEnd() ? nullptr : &*found;
}

} // namespace

ValueLabels::ValueLabels(const LabelSet &set)
{
    for (const LabelSet::Entry &entry : set.entries) {
        if (entry.isText && !m_byText.contains(entry.text)) {
            m_byText.insert(entry.text, textCell(entry.label));
        } else if (!entry.isText && entry.tag == 0 && !m_byNumber.contains(keyOf(entry.number))) {
            m_byNumber.insert(keyOf(entry.number), textCell(entry.label));
        }
    }
}

const uchar *ValueLabels::find(double number) const
{
    return bytesOf(findIn(m_byNumber, keyOf(number)));
}

const uchar *ValueLabels::find(std::string_view text) const
{
    return bytesOf(findIn(
        m_byText, QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()))));
}

} // namespace corvanta::stat
