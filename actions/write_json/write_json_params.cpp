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
        shared::writeAllRows<P>(),
        shared::testCol<P>(),
        shared::testValue<P>(),
        shared::nullString<P>("write null", "write \"\""),
        shared::nullNumber<P>("write null"),
        shared::nan<P>("write null"),
        shared::floatToString<P>(),
        flag("specialBool", &P::specialBool)
            .label("The texts true and false are booleans")
            .meaning("Writes the texts true, True, false and False as booleans. Default off in "
                     "graphs saved before version 2.79."),
        flag("replaceLF", &P::replaceLF)
            .label("Line feeds become \\n")
            .meaning("Writes line feeds in texts as \\n. Off: they stay as they are, which strict "
                     "readers refuse."),
        flag("escapeControls", &P::escapeControls)
            .label("Control characters become escapes")
            .meaning("Writes all control characters in texts and names as escapes, so that the "
                     "file is JSON "
                     "whatever the cells hold. Off: they stay as they are."),
        flag("splitFile", &P::splitFile)
            .label("One file per value of the split column")
            .meaning("Writes one file per value of splitCol; the value goes into the file name, in "
                     "front of the extension."),
        flag("advancedNaming", &P::advancedNaming)
            .label("The host makes the names of split files")
            .meaning("The value takes the place of each * in the file name; without one it goes in "
                     "front of the extension, or becomes the extension of a name that has none."),
        shared::alwaysWrite<P>(),
        text("splitCol", &P::splitCol)
            .label("Split column")
            .meaning("Column whose values split the table, which should be sorted on it."),
        shared::writeAllColumnsWithoutLevels<P>(),
        shared::prefix<P>(),
        shared::suffix<P>(),
        shared::columnsToWrite<P>("ToWrite", &P::toWrite),
        writeLevels<P>(&P::levels),
    };
    return table;
}

} // namespace corvanta
