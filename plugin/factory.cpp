#include "plugin/catalogue.h"
#include "readers/read_excel.h"
#include "readers/read_excel_old.h"
#include "readers/read_excel_sheets.h"
#include "readers/read_json.h"
#include "readers/read_parquet.h"
#include "readers/read_stat.h"
#include "readers/read_xbf.h"
#include "readers/read_xml.h"
#include "writers/write_doc.h"
#include "writers/write_doc_table.h"
#include "writers/write_excel.h"
#include "writers/write_json.h"
#include "writers/write_parquet.h"
#include "writers/write_report.h"
#include "writers/write_sas.h"
#include "writers/write_sas_xpt.h"
#include "writers/write_xml.h"

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
