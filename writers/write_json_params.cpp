#include "writers/write_json_params.h"

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
        text("fileName", &P::fileName)
            .outputFile()
            .label("File")
            .meaning("JSON file to write, UTF-8."),
        number("fileMode", &P::fileMode)
            .choices({"create or overwrite", "append"})
            .label("Open the file")
            .meaning("Whether an existing file is replaced or continued."),
        flag("checkNameCollision", &P::checkNameCollision)
            .label("Check for columns of the same name")
            .meaning("Two written columns of one name are an error."),
        flag("createDir", &P::createDir)
            .label("Create the folder of the file")
            .meaning("Creates missing folders of the file."),
        flag("writeAllRows", &P::writeAllRows)
            .label("Write all rows")
            .meaning("Writes every row. Off: only rows that pass the test."),
        text("testCol", &P::testCol)
            .label("Column to test")
            .meaning("Column that is tested when writeAllRows is off."),
        text("testValue", &P::testValue)
            .label("Value to test for")
            .meaning("Rows whose testCol has another text are not written."),
        number("nullString", &P::nullString)
            .choices({"write null", "write \"\"", "leave it out"})
            .label("Missing text")
            .meaning("What is written for a missing text cell."),
        number("nullNumber", &P::nullNumber)
            .choices({"write null", "leave it out"})
            .label("Missing number")
            .meaning("What is written for a missing whole or decimal number."),
        number("nan", &P::nan)
            .choices({"write nan, inf or -inf", "write null", "leave it out"})
            .label("NaN and infinite numbers")
            .meaning("What is written for NaN and infinite numbers."),
        text("floatToString", &P::floatToString)
            .label("Format of decimal numbers")
            .meaning("printf format with one conversion of a floating-point number."),
        flag("specialBool", &P::specialBool)
            .label("The texts true and false are booleans")
            .meaning("Writes the texts true, True, false and False as booleans. Default off in "
                     "graphs saved before version 2.79."),
        flag("replaceLF", &P::replaceLF)
            .label("Line feeds become \\n")
            .meaning("Writes line feeds in texts as \\n. Off: they stay as they are, which strict "
                     "readers refuse."),
        flag("splitFile", &P::splitFile)
            .label("One file per value of the split column")
            .meaning("Writes one file per value of splitCol; the value goes into the file name, in "
                     "front of the extension."),
        flag("advancedNaming", &P::advancedNaming)
            .label("The host makes the names of split files")
            .meaning("The value takes the place of each * in the file name; without one it goes in "
                     "front of the extension, or becomes the extension of a name that has none."),
        flag("alwaysWrite", &P::alwaysWrite)
            .label("Write a file also without rows")
            .meaning("Writes a file with its start and end also when there is no row."),
        text("splitCol", &P::splitCol)
            .label("Split column")
            .meaning("Column whose values split the table, which should be sorted on it."),
        flag("writeAllColumns", &P::writeAllColumns)
            .label("Write all columns")
            .meaning("Writes every column. Off: only the columns of ToWrite. Without effect when "
                     "there are Levels."),
        elementText("Prefix", &P::prefix)
            .always()
            .label("Start of the file")
            .meaning("Text at the start of every file."),
        elementText("Suffix", &P::suffix)
            .always()
            .label("End of the file")
            .meaning("Text at the end of every file."),
        strings("ToWrite", &P::toWrite)
            .label("Columns to write")
            .meaning("Columns that are written when writeAllColumns is off."),
        writeLevels(&P::levels),
    };
    return table;
}

} // namespace corvanta
