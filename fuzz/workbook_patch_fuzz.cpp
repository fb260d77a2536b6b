// Changes the parts of a workbook: the first byte selects the part, the rest is its text. Checks
// that well-formed text stays well-formed, and that a sheet is split alike for every size of
// pieces.
#include "codecs/opc/content_types.h"
#include "codecs/opc/outline.h"
#include "codecs/opc/relationships.h"
#include "codecs/xlsx/cell_range.h"
#include "codecs/xlsx/row_styles.h"
#include "codecs/xlsx/sheet_splitter.h"
#include "codecs/xlsx/sheet_tail.h"
#include "codecs/xlsx/styles_part.h"
#include "codecs/xlsx/workbook_part.h"
#include "fuzz/support/require.h"

using namespace corvanta::xlsx;
using corvanta::opc::ContentTypes;
using corvanta::opc::Outline;
using corvanta::opc::Relationships;

namespace {

template <class Changed> void requireWellFormed(const Changed &changed)
{
    require(!changed || Outline::read(*changed));
}

void changeWorkbook(QByteArrayView text)
{
    const auto workbook = readWorkbook(text);
    if (!workbook) {
        return;
    }
    const SheetEntry sheet{freeSheetName(workbook->sheets.front().name, workbook->sheetNames()),
                           workbook->freeSheetId(), "rId1"};
    const auto changed =
        changedWorkbook(text, {{sheet}, {{workbook->sheets.back().name, sheet.name}}, true});
    requireWellFormed(changed);
    const auto again = readWorkbook(*changed);
    require(again && again->sheets.size() == workbook->sheets.size() + 1);
    require(again->sheets.back().sheetId == sheet.sheetId);
}

void changeRelationships(const QByteArray &text)
{
    if (auto relationships = Relationships::read(text)) {
        relationships->add({"rId1", {}, QStringLiteral("a&b")});
        relationships->remove("rId2");
        require(bool(Outline::read(relationships->text())));
    }
}

void changeTypes(const QByteArray &text)
{
    if (auto types = ContentTypes::read(text)) {
        types->declarePart("xl/worksheets/sheet1.xml", "text/xml");
        require(bool(Outline::read(types->text())));
    }
}

void changeStyles(QByteArrayView text)
{
    const auto changed = changedStyles(text, {0, "yyyy/mm/dd"});
    require(!changed || Outline::read(changed->text));
    QByteArray styled = text.toByteArray();
    const SheetLook look{true, true, false, false, false, {}, {QStringLiteral("0.00")}};
    const auto once = addLook(&styled, look);
    if (once) {
        // A second update finds the formats of the first.
        const QByteArray before = styled;
        const auto twice = addLook(&styled, look);
        require(twice && styled == before && twice->header == once->header &&
                twice->columns == once->columns);
    }
}

void readTablePart(QByteArrayView text)
{
    const auto table = readTable(text);
    // The range of a table is printed in a form that can be read again.
    require(!table || parseRange(rangeText(table->range).toUtf8()));
}

struct Split
{
    bool isGood = true;
    QByteArray text;
    RowStyles rows;
};

Split split(QByteArrayView text, quint64 startRow, qsizetype pieceBytes)
{
    SheetSplitter splitter(startRow);
    Split out;
    for (qsizetype at = 0; at < text.size() && out.isGood; at += pieceBytes) {
        out.isGood = bool(splitter.push(text.sliced(at, qMin(pieceBytes, text.size() - at))));
        const QByteArray head = splitter.takeHead();
        out.rows.push(head, splitter.rowStarts());
        out.text += head;
    }
    out.isGood = out.isGood && splitter.finish();
    if (out.isGood) {
        const QByteArray head = splitter.takeHead();
        out.rows.push(head, splitter.rowStarts());
        out.text += head;
        const auto tail = withHyperlinks(splitter.tail(), splitter.rootTag(), splitter.family(),
                                         {{1, 1, 0}}, splitter.tailFacts().highestUsedId);
        require(bool(tail));
        out.text += "<row r=\"" + QByteArray::number(splitter.firstRow1()) + "\"/>" + tail->text;
    }
    return out;
}

void changeSheet(QByteArrayView text)
{
    const bool isWellFormed = bool(Outline::read(text));
    for (const quint64 startRow : {0, 3}) {
        const Split whole = split(text, startRow, qMax<qsizetype>(text.size(), 1));
        const Split inPieces = split(text, startRow, 3);
        require(whole.isGood == inPieces.isGood);
        if (whole.isGood) {
            require(whole.text == inPieces.text);
            require(whole.rows.styles() == inPieces.rows.styles());
            require(!isWellFormed || Outline::read(whole.text));
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    if (size == 0) {
        return 0;
    }
    const QByteArrayView text(data + 1, static_cast<qsizetype>(size - 1));
    switch (data[0] % 5) {
    case 0:
        changeWorkbook(text);
        break;
    case 1:
        changeStyles(text);
        readTablePart(text);
        break;
    case 2:
        changeRelationships(text.toByteArray());
        break;
    case 3:
        changeTypes(text.toByteArray());
        break;
    default:
        changeSheet(text);
    }
    return 0;
}
