#include "actions/write_sas_xpt/write_sas_xpt_params.h"

// The lines are in the order of saved graphs.
namespace corvanta {

const ParamTable<WriteSasXptParams> &writeSasXptParamTable()
{
    // The same lines as those of writeSAS without its limits and automatic widths.
    using P = WriteSasXptParams;
    static const ParamTable<P> table{
        shared::dataSetFile<P>("Transport file (.xpt) to write."),
        shared::dataSetContent<P>(),
    };
    return table;
}

} // namespace corvanta
