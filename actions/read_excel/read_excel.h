// readExcel: reads sheets of .xlsx and .xlsm workbooks.
//
// ReadWorkbook does the work; this action supplies the parameters and the format.
#pragma once
#include "actions/workbook/read_workbook.h"

namespace corvanta {

extern const ActionEntry kReadExcelEntry;

/// Threads: see ReadWorkbook.
class ActionReadExcel final : public ParamAction<ActionReadExcel, ReadExcelParams, ReadWorkbook>
{
public:
    ActionReadExcel(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadExcelParams> &paramTable() { return readExcelParamTable(); }
    /// Pin 0 brings the file name.
    static int pinsInFor(const ReadExcelParams &params) { return params.fileNameFromPin ? 1 : 0; }

private:
    const ReadExcelParams &readerParams() const override { return m_params; }
    ReadExcelParams &readerParams() override { return m_params; }
    const WorkbookFormat &workbookFormat() const override;
};

} // namespace corvanta
