// Rows that are sorted, and merged areas that are filled.
#include "codecs/sheet/row_filters.h"

#include <gtest/gtest.h>

#include <string>

using namespace corvanta;
using namespace corvanta::sheet;

namespace {

struct TextRow
{
    qint64 number;
    std::vector<std::pair<int, std::u16string>> cells;
};

/// Delivers rows of texts; each row replaces the memory of the one before it.
class FixedRows final : public SheetRows
{
public:
    explicit FixedRows(std::vector<TextRow> rows)
        : m_rows(std::move(rows))
    {
    }
    WorkbookResult<bool> next(SheetRow *row) override
    {
        if (m_at == m_rows.size()) {
            return false;
        }
        m_current = m_rows[m_at++];
        m_cells.clear();
        for (const auto &[column, text] : m_current.cells) {
            SheetCell cell;
            cell.column = column;
            cell.kind = CellKind::Text;
            cell.text = text;
            m_cells.push_back(cell);
        }
        *row = {m_current.number, false, m_cells};
        return true;
    }
    double fractionDone() const override { return 0; }
    const SheetProblems &problems() const override { return m_problems; }

private:
    std::vector<TextRow> m_rows;
    size_t m_at = 0;
    TextRow m_current = {};
    std::vector<SheetCell> m_cells;
    SheetProblems m_problems;
};

/// "number:column=text,...;" of each row.
std::string textOf(SheetRows &rows)
{
    QString text;
    SheetRow row;
    for (auto more = rows.next(&row); more && *more; more = rows.next(&row)) {
        text += QString::number(row.number) + QLatin1Char(':');
        for (const SheetCell &cell : row.cells) {
            text += QString::number(cell.column) + QLatin1Char('=') +
                    QString::fromUtf16(cell.text.data(), static_cast<qsizetype>(cell.text.size())) +
                    QLatin1Char(',');
        }
        text += QLatin1Char(';');
    }
    return text.toStdString();
}

} // namespace

TEST(FilledRows, FillsManyAreasThatBeginInOneRow)
{
    const std::u16string text(40, u'x'); // not inside of its string object
    std::vector<std::pair<int, std::u16string>> first;
    std::vector<CellArea> areas;
    std::string expected = "0:";
    std::string filled = "1:";
    for (int i = 0; i < 9; ++i) {
        first.emplace_back(i, i % 2 == 0 ? text : std::u16string(1, u'a'));
        areas.push_back({0, 1, i, i});
        const std::string cell =
            std::to_string(i) + "=" + (i % 2 == 0 ? std::string(40, 'x') : "a");
        expected += cell + ",";
        filled += cell + ",";
    }
    const std::vector<TextRow> rows{{0, first}, {3, {{0, u"end"}}}};
    const auto all = filledRows(std::make_unique<FixedRows>(rows), areas);
    EXPECT_EQ(textOf(*all), expected + ";" + filled + ";3:0=end,;");
}

TEST(FilledRows, FillsBlocksAndLeavesEmptyAreas)
{
    const std::vector<TextRow> rows{{1, {{1, u"b"}, {4, u"lost"}}}, {2, {{0, u"a"}}}, {9, {}}};
    const auto all =
        filledRows(std::make_unique<FixedRows>(rows), {{1, 2, 1, 2}, {1, 5, 6, 7}, {2, 4, 4, 4}});
    EXPECT_EQ(textOf(*all), "1:1=b,2=b,4=lost,;2:0=a,1=b,2=b,;9:;");
}

TEST(SortedRows, SortsAndJoins)
{
    const std::vector<TextRow> rows{
        {5, {{0, u"a"}, {2, u"old"}}}, {1, {{3, u"d"}}}, {5, {{1, u"b"}, {2, u"new"}}}};
    EXPECT_EQ(textOf(*sortedRows(std::make_unique<FixedRows>(rows), 1 << 20)),
              "1:3=d,;5:0=a,1=b,2=new,;");
    SheetRow row;
    const auto tooLarge = sortedRows(std::make_unique<FixedRows>(rows), 100)->next(&row);
    ASSERT_FALSE(tooLarge);
    EXPECT_EQ(tooLarge.fault().code, WorkbookError::TooLarge);
}
