// Areas as users and defined names write them (ECMA-376 part 1, 18.2.5):
//
//   B2          one cell                 B2:D9        a rectangle
//   B:D         whole columns            2:9          whole rows
//   B2:         from B2 to the end       $B$2:$D$9    the signs mean nothing here
//
//   'It''s me'!B2:D9     with a sheet: in apostrophes, which are doubled inside
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

/// The number of a letter of either case, from 1; 0 for any other character.
int letterNumber(QChar c)
{
    const char16_t upper = c.toUpper().unicode();
    return upper >= u'A' && upper <= u'Z' ? upper - u'A' + 1 : 0;
}

/// The letters at `*at` as a column.
std::optional<int> takeColumn(QStringView text, qsizetype *at)
{
    int column = 0;
    const qsizetype from = *at;
    for (; *at < text.size(); ++*at) {
        const int letter = letterNumber(text[*at]);
        if (letter == 0) {
            break;
        }
        // One more than there are: a longer name neither overflows nor becomes a column.
        column = std::min(column * 26 + letter, static_cast<int>(kMaxColumns) + 1);
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

/// Whether the column and the row, as far as they are present, are those of a sheet.
bool isInSheet(const Corner &corner)
{
    const int column = corner.column.value_or(0);
    const qint64 row = corner.row.value_or(0);
    return column >= 0 && column < static_cast<int>(kMaxColumns) && row >= 0 && row < kMaxRows;
}

/// One side of an area; a text without characters is an open end.
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
    const bool isValid = at == text.size() && isInSheet(corner);
    return isValid && (!corner.isEmpty() || text.isEmpty()) ? std::optional(corner) : std::nullopt;
}

/// The name of a sheet without the apostrophes around it; those inside it are doubled.
QString unquoted(const QString &name)
{
    const bool isQuoted = name.size() >= 2 && name.startsWith(u'\'') && name.endsWith(u'\'');
    QString inside = isQuoted ? name.mid(1, name.size() - 2) : name;
    return isQuoted ? inside.replace(QLatin1String("''"), QLatin1String("'")) : inside;
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
    // The corners may be any two opposite ones.
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
        result.sheet = unquoted(text.first(mark).toString());
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
