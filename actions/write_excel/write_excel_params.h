// writers/write_excel_params.h
// The parameters of writeExcel.
#pragma once
#include "actions/shared/row_writer.h"
#include "corvanta/param_table.h"

namespace corvanta {

struct WriteExcelParams : RowWriterParams
{
    int mode = 0;
    QString fileNameSource;
    QString fileNameDestination;
    int sheetMode = 1;
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
    int dateFormatType = 0;
    QString dateFormat;
    int dateFormatExcel = 0;
    QStringList toDate;
    QStringList toFormula;
};

const ParamTable<WriteExcelParams> &writeExcelParamTable();

/// Defaults of graphs saved by earlier hosts.
void adjustWriteExcelDefaults(WriteExcelParams &params, double savedVersion);

} // namespace corvanta
