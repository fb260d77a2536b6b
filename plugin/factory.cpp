#include "actions/read_excel/read_excel.h"
#include "actions/read_excel_old/read_excel_old.h"
#include "actions/read_excel_sheets/read_excel_sheets.h"
#include "actions/read_json/read_json.h"
#include "actions/read_parquet/read_parquet.h"
#include "actions/read_stat/read_stat.h"
#include "actions/read_xbf/read_xbf.h"
#include "actions/read_xml/read_xml.h"
#include "actions/write_doc/write_doc.h"
#include "actions/write_doc_table/write_doc_table.h"
#include "actions/write_excel/write_excel.h"
#include "actions/write_json/write_json.h"
#include "actions/write_parquet/write_parquet.h"
#include "actions/write_report/write_report.h"
#include "actions/write_sas/write_sas.h"
#include "actions/write_sas_xpt/write_sas_xpt.h"
#include "actions/write_xml/write_xml.h"
#include "plugin/catalogue.h"

#include <iterator>
#include <new>

namespace corvanta {

namespace {

template <class Action> ActionItem *make()
{
    return new (std::nothrow) Action(XMLNode::emptyNode(), nullptr);
}

/// In catalogue order.
constexpr ActionItem *(*kMakers[kActionCount])() = {
    make<ActionWriteReport>,     make<ActionReadExcel>,     make<ActionReadExcelOld>,
    make<ActionReadExcelSheets>, make<ActionWriteExcel>,    make<ActionReadStat>,
    make<ActionReadXML>,         make<ActionWriteXML>,      make<ActionReadJSON>,
    make<ActionWriteJSON>,       make<ActionReadXBF>,       make<ActionReadParquet>,
    make<ActionWriteParquet>,    make<ActionWriteSAS>,      make<ActionWriteSASXPT>,
    make<ActionWriteDoc>,        make<ActionWriteDocTable>,
};

} // namespace

ActionItem *createCatalogueAction(unsigned int index)
{
    try {
        return index < std::size(kMakers) ? kMakers[index]() : nullptr;
    } catch (const std::exception &) {
        return nullptr;
    }
}

} // namespace corvanta
