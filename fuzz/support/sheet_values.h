// What readers and writers of workbooks do with values on their own: rows in another form, dates as
// texts, and names.
#pragma once
#include "codecs/sheet/date_text.h"
#include "codecs/sheet/row_filters.h"
#include "codecs/xlsx/name_rules.h"
#include "fuzz/support/feed.h"
#include "fuzz/support/require.h"

#include <cmath>
#include <utility>

namespace corvanta::sheet {

/// Rows with numbers of any order, unless they are asked for in order.
class FedRows final : public SheetRows
{
public:
    FedRows(Feed *feed, bool isSorted)
        : m_feed(feed)
        , m_isSorted(isSorted)
    {
    }

    WorkbookResult<bool> next(SheetRow *row) override
    {
        if (m_feed->isEmpty()) {
            return false;
        }
        m_number = m_isSorted ? m_number + 1 + m_feed->below(3) : m_feed->below(40);
        m_cells.clear();
        m_text = m_feed->text(m_feed->below(6));
        for (int column = m_feed->below(4); column < 6; column += 1 + m_feed->below(3)) {
            const bool isText = m_feed->flag();
            m_cells.push_back({column, isText ? CellKind::Text : CellKind::Number,
                               NumberForm::General, isText ? 0 : double(column),
                               isText ? std::u16string_view(m_text) : std::u16string_view()});
        }
        *row = {m_number, m_feed->flag(), m_cells};
        return true;
    }
    double fractionDone() const override { return 0; }
    const SheetProblems &problems() const override { return m_problems; }

private:
    Feed *m_feed;
    bool m_isSorted;
    qint64 m_number = -1;
    std::u16string m_text;
    std::vector<SheetCell> m_cells;
    SheetProblems m_problems;
};

inline std::vector<CellArea> areasOf(Feed &feed)
{
    std::vector<CellArea> areas(static_cast<size_t>(feed.below(4)));
    for (CellArea &area : areas) {
        area.firstRow = feed.below(30);
        area.lastRow = area.firstRow + feed.below(5);
        area.firstColumn = feed.below(6);
        area.lastColumn = area.firstColumn + feed.below(3);
    }
    return areas;
}

/// Rows and the cells of each are in order.
inline void checkRows(SheetRows &rows)
{
    SheetRow row;
    qint64 last = -1;
    for (auto more = rows.next(&row); more && *more; more = rows.next(&row)) {
        require(row.number > std::exchange(last, row.number));
        int column = -1;
        for (const SheetCell &cell : row.cells) {
            require(cell.column > std::exchange(column, cell.column));
        }
    }
    (void)rows.fractionDone();
    (void)rows.problems();
}

/// A date with a time is the serial again, to the millisecond.
inline void checkDate(double serial, bool uses1904)
{
    for (const NumberForm form : {NumberForm::General, NumberForm::Date, NumberForm::Time,
                                  NumberForm::DateTime, NumberForm::Duration}) {
        std::array<char16_t, kDateTextUnits> text{};
        const int units = putDateText(form, serial, uses1904, text.data());
        require(units >= 0 && units <= kDateTextUnits);
        const auto back = serialOfIsoText({text.data(), static_cast<size_t>(units)}, uses1904);
        constexpr double kMillisecond = 1.0 / 86'400'000;
        require(form != NumberForm::DateTime || !back || std::abs(*back - serial) <= kMillisecond);
    }
}

inline void checkNames(const QString &name, const QString &other)
{
    for (const auto &faults : {xlsx::sheetNameFaults(name, {other}), xlsx::rangeNameFaults(name)}) {
        require(!name.isEmpty() || faults.contains(xlsx::NameFault::Empty));
    }
    const QString same = xlsx::sameButCase(name, {other});
    require(same.isEmpty() || (same == other && name.compare(other, Qt::CaseInsensitive) == 0));
}

/// Two flags: the calendar from 1904, and merged areas. A number and two names follow, then rows.
inline void checkSheetValues(Feed feed)
{
    const bool uses1904 = feed.flag();
    const bool isMerged = feed.flag();
    checkDate(feed.value<double>(), uses1904);
    checkDate(feed.value<qint32>() / 86'400.0, uses1904);
    const QString name = feed.string(feed.below(20));
    checkNames(name, feed.flag() ? name.toUpper() : feed.string(8));
    (void)serialOfIsoText(name.toStdU16String(), uses1904);
    if (isMerged) {
        const std::vector<CellArea> areas = areasOf(feed);
        checkRows(*filledRows(std::make_unique<FedRows>(&feed, true), areas));
    } else {
        checkRows(*sortedRows(std::make_unique<FedRows>(&feed, false), qint64(1) << 24));
    }
}

} // namespace corvanta::sheet
