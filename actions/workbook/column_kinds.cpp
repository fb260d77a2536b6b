#include "actions/workbook/column_kinds.h"

#include "codecs/sheet/cell_area.h"

#include <algorithm>
#include <bit>

namespace corvanta {

/// The bits in the order of ColumnContent.
size_t ColumnKinds::kindOf(quint16 content)
{
    constexpr std::array<quint8, 9> kKinds{0, 0, kTexts, 1, 1, 1, 2, 1, 0};
    return kKinds[static_cast<size_t>(std::countr_zero(content))];
}

/// Long texts are cut: the message needs to be recognised in the sheet, not to be complete.
void ColumnKinds::setFirst(quint16 content, qint64 row, int column, const QString &text)
{
    constexpr qsizetype kMaxShownUnits = 60;
    Kind &kind = m_kinds[kindOf(content)];
    kind.row = row;
    kind.column = column;
    kind.text =
        text.size() > kMaxShownUnits ? text.left(kMaxShownUnits) + QStringLiteral("...") : text;
}

std::optional<MixedColumn> ColumnKinds::mixed() const
{
    static const std::array<QString, kTexts> kNames{
        QStringLiteral("numbers"), QStringLiteral("dates"), QStringLiteral("booleans")};
    const auto most =
        std::max_element(m_kinds.begin(), m_kinds.begin() + kTexts,
                         [](const Kind &a, const Kind &b) { return a.count < b.count; });
    const Kind *first = nullptr;
    qint64 values = 0;
    for (const Kind &kind : m_kinds) {
        values += kind.count;
        if (&kind != &*most && kind.count > 0 && (first == nullptr || kind.row < first->row)) {
            first = &kind;
        }
    }
    if (first == nullptr || (values - most->count) * 2 > most->count) {
        return std::nullopt;
    }
    return MixedColumn{0,           kNames[static_cast<size_t>(most - m_kinds.begin())],
                       most->count, values,
                       first->text, sheet::cellName(first->column, first->row)};
}

} // namespace corvanta
