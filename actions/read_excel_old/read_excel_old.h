// readExcelOld: reads sheets of legacy workbooks, .xls and .xlt.
//
// ReadWorkbook does the work; this action supplies the parameters, which are those of readExcel,
// and the format.
#pragma once
#include "actions/workbook/read_workbook.h"

namespace corvanta {

extern const ActionEntry kReadExcelOldEntry;

/// Threads: see ReadWorkbook.
class ActionReadExcelOld final
    : public ParamAction<ActionReadExcelOld, ReadExcelParams, ReadWorkbook>
{
public:
    ActionReadExcelOld(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadExcelParams> &paramTable() { return readExcelParamTable(); }
    /// Pin 0 brings the file name.
    static int pinsInFor(const ReadExcelParams &params) { return params.fileNameFromPin ? 1 : 0; }

private:
    const ReadExcelParams &readerParams() const override { return m_params; }
    ReadExcelParams &readerParams() override { return m_params; }
    const WorkbookFormat &workbookFormat() const override;
};

} // namespace corvanta
