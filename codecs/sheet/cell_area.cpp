#include "codecs/sheet/cell_area.h"

#include "codecs/sheet/cell_text.h"
#include "codecs/sheet/sheet_writer.h"

namespace corvanta::sheet {

namespace {

/// One side of an area; both are absent for an open end.
struct Corner
{
    std::optional<int> column;
    std::optional<qint64> row;

    bool isEmpty() const { return !column && !row; }
};

/// The letters at `*at` as a column.
std::optional<int> takeColumn(QStringView text, qsizetype *at)
{
    int column = 0;
    const qsizetype from = *at;
    for (; *at < text.size(); ++*at) {
        const char16_t c = text[*at].toUpper().unicode();
        if (c < u'A' || c > u'Z') {
            break;
        }
        column = std::min(column * 26 + (c - u'A' + 1), static_cast<int>(kMaxColumns) + 1);
    }
    return *at == from ? std::nullopt : std::optional(column - 1);
}

/// The digits at `*at` as a row.
std::optional<qint64> takeRow(QStringView text, qsizetype *at)
{
    qint64 row = 0;
    const qsizetype from = *at;
    for (; *at < text.size() && text[*at] >= u'0' && text[*at] <= u'9'; ++*at) {
        row = std::min(row * 10 + (text[*at].unicode() - u'0'), kMaxRows + 1);
    }
    return *at == from ? std::nullopt : std::optional(row - 1);
}

void skipDollar(QStringView text, qsizetype *at)
{
    *at += *at < text.size() && text[*at] == u'$' ? 1 : 0;
}

std::optional<Corner> parseCorner(QStringView text)
{
    Corner corner;
    qsizetype at = 0;
    skipDollar(text, &at);
    corner.column = takeColumn(text, &at);
    if (corner.column) {
        skipDollar(text, &at);
    }
    corner.row = takeRow(text, &at);
    const bool isValid = at == text.size() && corner.column.value_or(0) >= 0 &&
                         corner.column.value_or(0) < static_cast<int>(kMaxColumns) &&
                         corner.row.value_or(0) >= 0 && corner.row.value_or(0) < kMaxRows;
    return isValid && (!corner.isEmpty() || text.isEmpty()) ? std::optional(corner) : std::nullopt;
}

} // namespace

std::optional<CellArea> parseArea(QStringView text)
{
    text = text.trimmed();
    const qsizetype colon = text.indexOf(u':');
    const auto first = parseCorner(text.first(colon < 0 ? text.size() : colon).trimmed());
    const auto last = colon < 0 ? first : parseCorner(text.sliced(colon + 1).trimmed());
    // A single corner is a cell, and one of the two ends must say something.
    if (!first || !last || (first->isEmpty() && last->isEmpty()) ||
        (colon < 0 && !(first->column && first->row))) {
        return std::nullopt;
    }
    CellArea area;
    area.firstColumn = first->column.value_or(0);
    area.firstRow = first->row.value_or(0);
    area.lastColumn = last->column.value_or(area.lastColumn);
    area.lastRow = last->row.value_or(area.lastRow);
    if (area.firstColumn > area.lastColumn) {
        std::swap(area.firstColumn, area.lastColumn);
    }
    if (area.firstRow > area.lastRow) {
        std::swap(area.firstRow, area.lastRow);
    }
    return area;
}

std::optional<SheetArea> parseSheetArea(QStringView text)
{
    text = text.trimmed();
    const qsizetype mark = text.lastIndexOf(u'!');
    SheetArea result;
    if (mark >= 0) {
        result.sheet = text.first(mark).toString();
        if (result.sheet.size() >= 2 && result.sheet.startsWith(u'\'') &&
            result.sheet.endsWith(u'\'')) {
            result.sheet = result.sheet.mid(1, result.sheet.size() - 2);
            result.sheet.replace(QLatin1String("''"), QLatin1String("'"));
        }
    }
    const auto area = parseArea(text.sliced(mark + 1));
    if (!area) {
        return std::nullopt;
    }
    result.area = *area;
    return result;
}

QString cellName(int column, qint64 row)
{
    return QString::fromLatin1(columnLetters(column)) + QString::number(row + 1);
}

} // namespace corvanta::sheet
