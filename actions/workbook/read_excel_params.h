// The parameters of readExcel and readExcelOld.
//
// Those that are not about files, one sheet, the header and file names are off by default: a saved
// graph reads the same rows in every version.
#pragma once
#include "actions/shared/params/sheet_selection.h"

namespace corvanta {

/// Which sheets of a workbook are read.
enum class SheetChoice {
    Selected,      ///< the one of sheetMode
    FirstWithData, ///< the first sheet with a cell
    Matching,      ///< those whose name matches the pattern sheetName
    All,
};
/// How dates are delivered: ISO 8601 texts, or days since the epoch of the workbook.
enum class DateCells { IsoText, Serials };
/// How cells such as #N/A are delivered.
enum class ErrorCells { Text, Missing };
/// What happens to rows without a cell between others; Stop ends the sheet at the first one.
enum class EmptyRows { Keep, Skip, Stop };

/// The values of one action, with the defaults that saved graphs rely on.
struct ReadExcelParams
{
    /// Input pin 0 brings the name, in its first row. `fileName` is then ignored.
    bool fileNameFromPin = false;
    /// Whether sheetIdx or sheetName selects the sheet; the other one is ignored.
    SheetSelection sheetMode = SheetSelection::ByNumber;
    /// Number of the sheet, from 1; a text, because it may contain variables of the graph.
    QString sheetIdx = QStringLiteral("1");
    /// A name, or a pattern with SheetChoice::Matching.
    QString sheetName;
    /// The first row holds the column names. Off: columns have their letters, and the first row is
    /// data.
    bool firstLineContainsColumnNames = true;
    /// Add the last column _FileNames.
    bool outputFilenames = false;
    /// A missing file fails the run. Off: a warning, and the next file.
    bool abortIfMissing = true;
    SheetChoice sheets = SheetChoice::Selected;
    /// Hidden sheets are not among the sheets to choose from; one that is selected is read.
    bool skipHiddenSheets = false;
    /// Add the column _SheetName. Added anyway when several sheets can be read.
    bool outputSheetNames = false;
    /// Cells in A1 notation, a table or a defined name; empty: the whole sheet.
    QString range;
    /// Rows at the beginning of the sheet or range that are not read.
    int skipRows = 0;
    /// Rows with cells that decide the types of columns first; 0: all.
    int scanRows = 0;
    /// Only scanRows rows decide the types. A later cell of another type fails the run.
    bool sampleOnly = false;
    /// All columns are texts.
    bool allText = false;
    DateCells dates = DateCells::IsoText;
    ErrorCells errorCells = ErrorCells::Text;
    /// The cells of a merged range all have the value of the first one.
    bool fillMerged = false;
    bool skipHiddenRows = false;
    bool skipHiddenColumns = false;
    EmptyRows emptyRows = EmptyRows::Keep;
    /// Columns of several sheets or files are joined by name. Off: they must be the same.
    bool unionByName = false;
    /// Seconds for which a missing file is tried again; -1: until it appears or the run ends.
    int timeOut = 0;
    /// A file or a pattern. Not expanded yet.
    QString fileName;
};

/// Constant; made by the first call.
const ParamTable<ReadExcelParams> &readExcelParamTable();

} // namespace corvanta
