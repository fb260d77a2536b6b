// Record numbers and versions of the legacy workbook formats (MS-XLS, 2.3; OpenOffice "Microsoft
// Excel File Format" for BIFF 2 to 5). Numbers of the same record with another layout end in the
// version in which it began.
#pragma once
#include <QtGlobal>

namespace corvanta::xls {

/// Versions of the record format. A workbook has one for all of its records.
enum class Biff : quint8 { V2 = 2, V3 = 3, V4 = 4, V5 = 5, V8 = 8 };

/// The numbers of the records that are read. Integers are little-endian; row and column are two
/// bytes each and count from 0.
enum RecordId : quint16 {
    // Cells.
    // They begin with row, column and the number of the XF record (2 bytes); BIFF 2 has three bytes
    // of attributes instead of the XF. The value follows.
    kBlank2 = 0x0001,
    // 2 bytes without a sign.
    kInteger2 = 0x0002,
    // An IEEE double.
    kNumber2 = 0x0003,
    // A text with its length.
    kLabel2 = 0x0004,
    // The value or error code (1 byte), and which of the two it is (1 byte).
    kBoolErr2 = 0x0005,
    // The stored result (8 bytes), flags, and the tokens of the formula, which are not read.
    kFormula = 0x0006, // BIFF 2, and with another layout BIFF 5 and 8
    // From BIFF 3 on the cells have these numbers.
    kNumber = 0x0203,
    kLabel = 0x0204,
    kBoolErr = 0x0205,
    kFormula3 = 0x0206,
    kFormula4 = 0x0406,
    // 4 bytes: a double or an integer of 30 bits, and whether to divide it by 100.
    kRk = 0x027E,
    kRkOld = 0x007E,
    // Row, first column, (XF, RK) for each cell, last column.
    kMulRk = 0x00BD,
    // A text with formats for parts of it.
    kRString = 0x00D6,
    // The number of a shared text (4 bytes).
    kLabelSst = 0x00FD,
    // What follows a cell.
    // The text that a formula gives; it follows the formula.
    kString2 = 0x0007,
    kString = 0x0207,
    // More data of the record before.
    kContinue = 0x003C,
    // Before the cell to which it belongs: the number of its XF record, if that is 63 or more.
    kIxfe = 0x0044,
    // The layout of a sheet.
    // Row, first column, column after the last one, height, flags.
    kRow2 = 0x0008,
    kRow = 0x0208,
    // First and last column, width, XF, flags.
    kColInfo = 0x007D,
    // Their number, and for each the first and last row, and the first and last column.
    kMergedCells = 0x00E5,
    // Streams.
    kBof2 = 0x0009,
    kBof3 = 0x0209,
    kBof4 = 0x0409,
    kBof = 0x0809, // BIFF 5 and 8
    kEof = 0x000A,
    // The workbook.
    // Defined names, and the records that say which sheets they mean.
    kName = 0x0018,
    kExternSheet = 0x0017,
    kSupBook = 0x01AE,
    // The texts of number formats, by which dates are recognised.
    kFormat2 = 0x001E, // also BIFF 3
    kFormat = 0x041E,
    // 1: serial 0 is 1904-01-01.
    kDateMode = 0x0022,
    // Only in encrypted workbooks.
    kFilePass = 0x002F,
    kCodePage = 0x0042,
    // The format of cells: among others the number of their number format.
    kXf2 = 0x0043,
    kXf3 = 0x0243,
    kXf4 = 0x0443,
    kXf = 0x00E0,
    // Offset, visibility, kind and name of a sheet.
    kBoundSheet = 0x0085,
    kSheetHeader = 0x008F, // BIFF 4 workspaces
    // The shared texts.
    kSst = 0x00FC,
};

/// The type of a stream, in its BOF record.
enum StreamType : quint16 {
    kGlobals = 0x0005,
    kWorksheetStream = 0x0010,
    kChartStream = 0x0020,
    kMacroStream = 0x0040,
    kWorkspace = 0x0100, // of several BIFF 4 sheets
};

/// Whether a record begins a stream, of any version.
constexpr bool isBof(quint16 id)
{
    return id == kBof || id == kBof4 || id == kBof3 || id == kBof2;
}

} // namespace corvanta::xls
