#include "actions/read_excel/read_excel.h"

#include "actions/workbook/workbook_formats.h"

namespace corvanta {

ActionReadExcel::ActionReadExcel(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadExcelEntry, saved, parameters)
{
}

const WorkbookFormat &ActionReadExcel::workbookFormat() const
{
    return kPackageWorkbookFormat;
}

} // namespace corvanta
