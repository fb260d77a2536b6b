// Record numbers and versions of the legacy workbook formats (MS-XLS, 2.3; OpenOffice "Microsoft
// Excel File Format" for BIFF 2 to 5). Numbers of the same record with another layout end in the
// version in which it began.
#pragma once
#include <QtGlobal>

namespace corvanta::xls {

/// Versions of the record format. A workbook has one for all of its records.
enum class Biff : quint8 { V2 = 2, V3 = 3, V4 = 4, V5 = 5, V8 = 8 };

enum RecordId : quint16 {
    // Cells.
    kBlank2 = 0x0001,
    kInteger2 = 0x0002,
    kNumber2 = 0x0003,
    kLabel2 = 0x0004,
    kBoolErr2 = 0x0005,
    kFormula = 0x0006, // BIFF 2, and with another layout BIFF 5 and 8
    kNumber = 0x0203,
    kLabel = 0x0204,
    kBoolErr = 0x0205,
    kFormula3 = 0x0206,
    kFormula4 = 0x0406,
    kRk = 0x027E,
    kRkOld = 0x007E,
    kMulRk = 0x00BD,
    kRString = 0x00D6,
    kLabelSst = 0x00FD,
    // What follows a cell.
    kString2 = 0x0007,
    kString = 0x0207,
    kContinue = 0x003C,
    // Before the cell to which it belongs: the number of its format, from 63 on.
    kIxfe = 0x0044,
    // The layout of a sheet.
    kRow2 = 0x0008,
    kRow = 0x0208,
    kColInfo = 0x007D,
    kMergedCells = 0x00E5,
    // Streams.
    kBof2 = 0x0009,
    kBof3 = 0x0209,
    kBof4 = 0x0409,
    kBof = 0x0809, // BIFF 5 and 8
    kEof = 0x000A,
    // The workbook.
    kName = 0x0018,
    kExternSheet = 0x0017,
    kSupBook = 0x01AE,
    kFormat2 = 0x001E, // also BIFF 3
    kFormat = 0x041E,
    kDateMode = 0x0022,
    kFilePass = 0x002F,
    kCodePage = 0x0042,
    kXf2 = 0x0043,
    kXf3 = 0x0243,
    kXf4 = 0x0443,
    kXf = 0x00E0,
    kBoundSheet = 0x0085,
    kSheetHeader = 0x008F, // BIFF 4 workspaces
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
