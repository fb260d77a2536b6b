#include "actions/read_excel_old/read_excel_old.h"

#include "actions/workbook/workbook_formats.h"

namespace corvanta {

ActionReadExcelOld::ActionReadExcelOld(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadExcelOldEntry, saved, parameters)
{
}

const WorkbookFormat &ActionReadExcelOld::workbookFormat() const
{
    return kLegacyWorkbookFormat;
}

} // namespace corvanta
