// The labels of one set as cells, found by value.
//
// The cells are made once per file, so that a labelled value costs one search and no copy.
#pragma once
#include "codecs/stat/dictionary.h"

#include <QByteArray>

#include <string_view>
#include <unordered_map>

namespace corvanta::stat {

/// Threads: constant after the construction; the cells are valid as long as the object.
class ValueLabels
{
public:
    /// Of several labels of one value the first one counts.
    explicit ValueLabels(const LabelSet &set);
    ValueLabels(const ValueLabels &) = delete;
    ValueLabels &operator=(const ValueLabels &) = delete;

    /// The text cell with the label of a value; null: it has none.
    const uchar *find(double number) const;
    /// `text` is as the file has it, without the blanks at its end.
    const uchar *find(std::string_view text) const;
    /// Whether the missing value with this tag has a label.
    bool hasTag(char tag) const { return m_tags.contains(tag); }

private:
    std::unordered_map<quint64, QByteArray> m_byNumber; // the key is the bits of the number
    std::unordered_map<QByteArray, QByteArray> m_byText;
    QByteArray m_tags; // of missing values with a label
};

} // namespace corvanta::stat
