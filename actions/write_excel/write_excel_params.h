// The parameters of writeExcel.
#pragma once
#include "actions/shared/params/sheet_selection.h"
#include "actions/shared/row_writer.h"

namespace corvanta {

/// What is written. Any other number means a new workbook.
enum class WorkbookMode { Create, AddSheet, ChangeSheet, CopyAndAddSheet, CopyAndChangeSheet };

/// Format in which dates are read from text cells.
enum class DateInput {
    Own,
    SystemShortDate,
    SystemLongDate,
    SystemShortTime,
    SystemLongTime,
    SystemShortDateTime,
    SystemLongDateTime
};

/// Number format of date cells in the sheet.
enum class DateDisplay {
    Date,
    DateMinutes,
    DateSeconds,
    SystemDateTime,
    SystemDate,
    DayMonthYear,
    DayMonth,
    MonthYear,
    Minutes12,
    Seconds12,
    Minutes24,
    Seconds24
};

struct WriteExcelParams : RowWriterParams
{
    WorkbookMode mode = WorkbookMode::Create;
    QString fileNameSource;
    QString fileNameDestination;
    SheetSelection sheetMode = SheetSelection::ByName;
    QString sheetIdx = QStringLiteral("1");
    QString sheetName = QStringLiteral("Sheet1");
    QString startRow = QStringLiteral("1");
    QString namedRange;
    bool nrIncludeTitleRow = false;
    QString floatToString = QStringLiteral("%.16g");
    bool createIfNotExists = true;
    bool forceRecompute = true;
    bool firstLineContainsColumnNames = true;
    bool noNans = true;
    bool useComma = false;
    bool alwaysWrite = false;
    bool equalisFormula = false;
    bool runExcel = false;
    bool excelHack = true;
    bool urlTag = false;
    bool crop = false;
    DateInput dateFormatType = DateInput::Own;
    QString dateFormat;
    DateDisplay dateFormatExcel = DateDisplay::Date;
    QStringList toDate;
    QStringList toFormula;
};

const ParamTable<WriteExcelParams> &writeExcelParamTable();

/// Defaults of graphs saved by earlier hosts.
void adjustWriteExcelDefaults(WriteExcelParams &params, double savedVersion);

} // namespace corvanta
