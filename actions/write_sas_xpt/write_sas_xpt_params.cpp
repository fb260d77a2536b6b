#include "actions/write_sas_xpt/write_sas_xpt_params.h"

// The lines are in the order of saved graphs.
namespace corvanta {

namespace {

using P = WriteSasXptParams;

/// What readers of the file must know.
ParamGroup<P> transportFormat()
{
    return {
        flag("version8", &P::version8)
            .label("Transport version 8")
            .meaning("Writes version 8: names of 32 bytes, labels of 256, texts of 32767. Off: "
                     "version 5, which more programs read: names of 8 bytes, labels of 40, texts "
                     "of 200."),
        text("encoding", &P::encoding)
            .label("Encoding of texts")
            .meaning("UTF-8, or the name of an encoding with one byte per character, for example "
                     "WINDOWS-1252. Characters that it does not have become '?'."),
        number("numberWidth", &P::numberWidth)
            .range(3, 8)
            .unit("bytes")
            .label("Width of numbers")
            .meaning("Bytes of each number, 3 to 8. Numbers lose digits if it is below 8, and "
                     "integers above 2097152 (at 4 bytes) are no longer exact."),
    };
}

} // namespace

const ParamTable<WriteSasXptParams> &writeSasXptParamTable()
{
    static const ParamTable<P> table{
        shared::dataSetFile<P>("Transport file (.xpt) to write."),
        transportFormat(),
        shared::wideTexts<P>(),
        shared::dataSetContent<P>(
            transportVariableTable(),
            "One V (n, label, format, l) per column that needs one, with its name, a label, a "
            "format of SAS such as DATE9., and the width of its numbers."),
    };
    return table;
}

} // namespace corvanta
