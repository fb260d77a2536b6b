#include "actions/write_xml/write_xml_params.h"

namespace corvanta {

const ParamTable<WriteXmlParams> &writeXmlParamTable()
{
    using P = WriteXmlParams;
    static const ParamTable<P> table{
        text<P>("fileName", &P::fileName).outputFile().label("File").meaning("XML file to write."),
        shared::fileMode<P>(),
        number("charMode", &P::charMode)
            .choices({"UTF-8 with byte-order mark", "UTF-8", "UTF-16LE with byte-order mark",
                      "UTF-16LE"})
            .label("Encoding")
            .meaning("Encoding of the file."),
        shared::checkNameCollision<P>(),
        shared::createDir<P>(),
        shared::writeAllRows<P>(),
        shared::testCol<P>(),
        shared::testValue<P>(),
        flag("useComma", &P::useComma)
            .label("Decimal comma")
            .meaning("Writes a decimal comma instead of the decimal point."),
        flag("humanReadable", &P::humanReadable)
            .label("Indent the elements")
            .meaning("Writes indented elements, one per line."),
        flag("wellFormed", &P::wellFormed)
            .label("Well-formed whatever the cells hold")
            .meaning(
                "Escapes all that parsers would refuse or change, puts U+FFFD for characters that "
                "XML "
                "does not know, and makes names of elements and attributes valid and distinct."),
        text("indentStart", &P::indentStart)
            .label("Indent of the outermost level")
            .meaning(
                "Blanks in front of an element of the first level; each level below has two more."),
        shared::nullString<P>("write the null form", "write an empty value"),
        shared::nullNumber<P>("write the null form"),
        shared::nan<P>("write the null form"),
        shared::floatToString<P>(),
        shared::alwaysWrite<P>(),
        shared::writeAllColumnsWithoutLevels<P>(),
        shared::prefix<P>(),
        shared::suffix<P>(),
        shared::columnsToWrite<P>("ToWrite", &P::toWrite),
        writeLevels<P>(&P::levels),
    };
    return table;
}

} // namespace corvanta
