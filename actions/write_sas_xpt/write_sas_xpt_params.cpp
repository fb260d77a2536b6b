#include "actions/write_sas_xpt/write_sas_xpt_params.h"

#include "actions/shared/writer_params.h"

namespace corvanta {

const ParamTable<WriteSasXptParams> &writeSasXptParamTable()
{
    using P = WriteSasXptParams;
    static const ParamTable<P> table{
        text("fileName", &P::fileName)
            .outputFile()
            .label("File")
            .meaning("Transport file (.xpt) to write."),
        shared::writeAllRows<P>(),
        shared::testCol<P>(),
        shared::testValue<P>(),
        shared::writeAllColumns<P>("Writes every column. Off: only the columns of ColWrite."),
        shared::createDir<P>(),
        shared::checkNameCollision<P>(),
        shared::columnsToWrite("ColWrite", &P::colWrite),
        stringColumns(&P::stringColumns),
    };
    return table;
}

} // namespace corvanta
