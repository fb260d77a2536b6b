// A table part (ECMA-376 part 1, 18.5.1.2):
//
//   <table name displayName ref="B2:D9" headerRowCount>     headerRowCount: 1 if it is missing
//     <tableColumns>  <tableColumn name/> ...               from the first column of ref
//   </table>
#include "codecs/xlsx/cell_range.h"

#include "codecs/opc/outline.h"
#include "codecs/opc/part_names.h"
#include "codecs/sheet/cell_text.h"

#include <algorithm>

namespace corvanta::xlsx {

namespace {

using opc::Error;
using opc::Outline;
using opc::Tag;

struct Cell
{
    qint64 row;
    int column;
};

/// The cell that `text` names: one to three letters and a number.
std::optional<Cell> parseCell(QByteArrayView text)
{
    constexpr qsizetype kMaxLetters = 3;
    qsizetype letters = 0;
    int column = 0;
    for (; letters < text.size() && text[letters] >= 'A' && text[letters] <= 'Z'; ++letters) {
        if (letters == kMaxLetters) {
            return std::nullopt;
        }
        // A is 1 and not 0, so that AA follows Z.
        column = column * 26 + (text[letters] - 'A') + 1;
    }
    const auto row = opc::partNumber(text.sliced(letters));
    if (column == 0 || !row || *row == 0) {
        return std::nullopt;
    }
    return Cell{static_cast<qint64>(*row), column - 1};
}

bool overlap(const CellRange &a, const CellRange &b)
{
    return a.firstRow <= b.lastRow && b.firstRow <= a.lastRow && a.firstColumn <= b.lastColumn &&
           b.firstColumn <= a.lastColumn;
}

/// The name that formulas use, which is the displayed one; some writers leave it out.
QString nameOf(const Tag &table)
{
    const QString displayed = opc::attributeText(table, "displayName");
    return displayed.isEmpty() ? opc::attributeText(table, "name") : displayed;
}

} // namespace

std::optional<CellRange> parseRange(QByteArrayView reference)
{
    const QByteArray plain = reference.toByteArray().replace('$', "");
    const qsizetype colon = plain.indexOf(':');
    const auto first = parseCell(QByteArrayView(plain).first(colon < 0 ? plain.size() : colon));
    const auto last = colon < 0 ? first : parseCell(QByteArrayView(plain).sliced(colon + 1));
    if (!first || !last) {
        return std::nullopt;
    }
    return CellRange{first->row, last->row, first->column, last->column};
}

QString rangeText(const CellRange &range)
{
    const auto cell = [](int column, qint64 row) {
        return QString::fromLatin1(sheet::columnLetters(column)) + QString::number(row);
    };
    return cell(range.firstColumn, range.firstRow) + u':' + cell(range.lastColumn, range.lastRow);
}

bool hidesCells(const CellRange &merged, const WrittenCells &written)
{
    // Only the first cell of a merged range is shown.
    return overlap(merged, written.range) &&
           (std::min(merged.lastRow, written.range.lastRow) > merged.firstRow ||
            std::min(merged.lastColumn, written.range.lastColumn) > merged.firstColumn);
}

Result<Table, Error> readTable(QByteArrayView text)
{
    const auto outline = Outline::readRootedIn(text, "table");
    if (!outline) {
        return outline.fault();
    }
    const Tag &root = outline->root().tag;
    const auto range = parseRange(root.attribute("ref").value_or(QByteArrayView()));
    if (!range) {
        return Fault<Error>{Error::Unexpected};
    }
    Table table{nameOf(root), *range, opc::attributeText(root, "headerRowCount") != u"0", {}};
    table.totalsRows = std::max(QString(opc::attributeText(root, "totalsRowCount")).toInt(), 0);
    if (const auto list = outline->child(0, "tableColumns")) {
        for (const int index : outline->children(*list, "tableColumn")) {
            table.columns << opc::attributeText(outline->element(index).tag, "name");
        }
    }
    return table;
}

bool losesHeader(const Table &table, const WrittenCells &written)
{
    const CellRange &cells = written.range;
    const qint64 row = table.range.firstRow;
    CellRange headerRow = table.range;
    headerRow.lastRow = row;
    const bool isRemoved = written.removesOlderRows && row >= cells.firstRow;
    if (!table.hasHeader || (!isRemoved && !overlap(headerRow, cells))) {
        return false;
    }
    // The header survives when the written row has the same names in its place.
    const bool isHeader = row == cells.firstRow && row <= cells.lastRow;
    return !isHeader ||
           written.header.mid(table.range.firstColumn, table.columns.size()) != table.columns;
}

/// How many of the written rows are below the table and touch it: they do not become a part of it.
qint64 rowsBelow(const Table &table, const WrittenCells &written)
{
    CellRange touched = table.range;
    ++touched.lastRow;
    return overlap(touched, written.range)
               ? std::max<qint64>(written.range.lastRow - table.range.lastRow, 0)
               : 0;
}

} // namespace corvanta::xlsx
