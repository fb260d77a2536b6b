#include "actions/write_json/write_json_params.h"

namespace corvanta {

void adjustWriteJsonDefaults(WriteJsonParams &params, double savedVersion)
{
    constexpr double kBooleansSince = 2.79;
    params.specialBool = savedVersion >= kBooleansSince;
}

const ParamTable<WriteJsonParams> &writeJsonParamTable()
{
    using P = WriteJsonParams;
    static const ParamTable<P> table{
        text<P>("fileName", &P::fileName)
            .outputFile()
            .label("File")
            .meaning("JSON file to write, UTF-8."),
        shared::fileMode<P>(),
        shared::checkNameCollision<P>(),
        shared::createDir<P>(),
        shared::rowFilter<P>(),
        shared::valueForms<P>("write null", "write \"\""),
        flag("specialBool", &P::specialBool)
            .label("The texts true and false are booleans")
            .meaning("Writes the texts true, True, false and False as booleans. Default off in "
                     "graphs saved before version 2.79."),
        flag("replaceLF", &P::replaceLF)
            .label("Line feeds become \\n")
            .meaning("Writes line feeds in texts as \\n. Off: they stay unchanged, which strict "
                     "parsers reject."),
        flag("escapeControls", &P::escapeControls)
            .label("Control characters become escapes")
            .meaning("Writes all control characters in texts and names as escapes, so that the "
                     "file is valid JSON for all cells. Off: they stay unchanged."),
        flag("splitFile", &P::splitFile)
            .label("One file per value of the split column")
            .meaning("Writes one file per value of splitCol; the value is put into the file name "
                     "before the extension."),
        flag("advancedNaming", &P::advancedNaming)
            .label("Put the value at each * of the file name")
            .meaning("The value replaces each * in the file name. Without a * it is put before the "
                     "extension, or becomes the extension of a name that has none."),
        shared::alwaysWrite<P>(),
        text("splitCol", &P::splitCol)
            .label("Split column")
            .meaning("Column whose values split the table, which should be sorted on it."),
        shared::fileContent<P>(),
    };
    return table;
}

} // namespace corvanta
