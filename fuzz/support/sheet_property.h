// Writes a table as a sheet of a workbook, for the fuzz targets of workbooks.
#pragma once
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/workbook_target.h"
#include "fuzz/support/table.h"

namespace corvanta {

/// A writer of packages whose bytes are in `sink`; all is compressed at once, by this thread.
struct MemoryPackage
{
    MemorySink sink;
    zip::PackageWriter writer{sink, {{}, 0}};
};

/// Columns for the table: `kinds` has two bits for each, 0 for texts as they are. With 3, texts are
/// dates with times, times and booleans in turn.
inline std::vector<sheet::Column> sheetColumns(const FuzzTable &table, quint16 kinds)
{
    using Kind = sheet::Column::Kind;
    static constexpr Kind kTyped[] = {Kind::DateTime, Kind::Time, Kind::Boolean};
    std::vector<sheet::Column> columns;
    const RowView row = table.row(0);
    for (int i = 0; i < row.columns; ++i, kinds >>= 2) {
        const cell::Type type = row.type(i);
        const Kind kind = (kinds & 3) == 1             ? Kind::Date
                          : type == cell::Type::Key    ? Kind::Key
                          : type == cell::Type::Double ? Kind::Float
                          : (kinds & 3) == 2           ? Kind::Formula
                          : (kinds & 3) == 3           ? kTyped[i % 3]
                                                       : Kind::Text;
        columns.push_back({i, kind, row.names[i]});
    }
    return columns;
}

/// How a table is written as a sheet.
struct SheetSetup
{
    sheet::SheetOptions options;
    quint16 kinds = 0; ///< see sheetColumns()
    QString dateFormat;
    xlsx::WorkbookEnd end;
    xlsx::SheetLook look;
};

/// Write the table to the sheet whose member is open.
inline bool writeSheet(xlsx::WorkbookTarget &workbook, const FuzzTable &table,
                       sheet::SheetWriter &writer)
{
    bool isGood = workbook.openSheet(writer) && writer.putHeader();
    for (int row = 0; isGood && row < table.rowCount(); ++row) {
        isGood = bool(writer.putRow(table.row(row)));
    }
    return isGood && workbook.finishSheet(writer);
}

/// Write the whole workbook, with a second sheet if the look allows it. Returns false after a
/// fault: a text that is too long, or a workbook that cannot be changed.
inline bool writeWorkbook(xlsx::WorkbookTarget &workbook, const FuzzTable &table,
                          const SheetSetup &setup, MemoryPackage &package)
{
    opc::MemberWriter members(package.writer);
    workbook.setLook(setup.look);
    if (!workbook.begin(members)) {
        return false;
    }
    sheet::DateParser dates(setup.dateFormat, QLocale::c(), true);
    const auto makeWriter = [&] {
        sheet::SheetOptions options = setup.options;
        workbook.setCellFormats(&options);
        return std::make_unique<sheet::SheetWriter>(
            package.writer, options, sheetColumns(table, setup.kinds), &dates,
            [](sheet::CellProblem, int, std::u16string_view) {});
    };
    auto writer = makeWriter();
    bool isGood = writeSheet(workbook, table, *writer);
    if (isGood && setup.look.mayContinue) {
        isGood = bool(workbook.nextSheet(
            *writer, xlsx::nextSheetName(workbook.sheetName(), workbook.sheetNames())));
        writer = makeWriter();
        isGood = isGood && writeSheet(workbook, table, *writer);
    }
    return isGood && workbook.finish(*writer, setup.end);
}

} // namespace corvanta
