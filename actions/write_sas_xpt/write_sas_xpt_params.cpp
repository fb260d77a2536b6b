#include "actions/write_sas_xpt/write_sas_xpt_params.h"

namespace corvanta {

const ParamTable<WriteSasXptParams> &writeSasXptParamTable()
{
    using P = WriteSasXptParams;
    static const ParamTable<P> table{
        text<P>("fileName", &P::fileName)
            .outputFile()
            .label("File")
            .meaning("Transport file (.xpt) to write."),
        shared::dataSetContent<P>(),
    };
    return table;
}

} // namespace corvanta
