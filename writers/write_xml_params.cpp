#include "writers/write_xml_params.h"

namespace corvanta {

const ParamTable<WriteXmlParams> &writeXmlParamTable()
{
    using P = WriteXmlParams;
    static const ParamTable<P> table{
        text("fileName", &P::fileName).outputFile().label("File").meaning("XML file to write."),
        number("fileMode", &P::fileMode)
            .choices({"create or overwrite", "append"})
            .label("Open the file")
            .meaning("Whether an existing file is replaced or continued."),
        number("charMode", &P::charMode)
            .choices({"UTF-8 with byte-order mark", "UTF-8", "UTF-16LE with byte-order mark",
                      "UTF-16LE"})
            .label("Encoding")
            .meaning("Encoding of the file."),
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
        flag("useComma", &P::useComma)
            .label("Decimal comma")
            .meaning("Writes a decimal comma instead of the decimal point."),
        flag("humanReadable", &P::humanReadable)
            .label("Indent the elements")
            .meaning("Writes indented elements, one per line."),
        text("indentStart", &P::indentStart)
            .label("Indent of the outermost level")
            .meaning("Blanks in front of an element of the first level; each level below has two more."),
        number("nullString", &P::nullString)
            .choices({"write the null form", "write an empty value", "leave it out"})
            .label("Missing text")
            .meaning("What is written for a missing text cell."),
        number("nullNumber", &P::nullNumber)
            .choices({"write the null form", "leave it out"})
            .label("Missing number")
            .meaning("What is written for a missing whole or decimal number."),
        number("nan", &P::nan)
            .choices({"write nan, inf or -inf", "write the null form", "leave it out"})
            .label("NaN and infinite numbers")
            .meaning("What is written for NaN and infinite numbers."),
        text("floatToString", &P::floatToString)
            .label("Format of decimal numbers")
            .meaning("printf format with one conversion of a floating-point number."),
        flag("alwaysWrite", &P::alwaysWrite)
            .label("Write a file also without rows")
            .meaning("Writes a file with its start and end also when there is no row."),
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
