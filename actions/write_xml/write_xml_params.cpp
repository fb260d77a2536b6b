#include "actions/write_xml/write_xml_params.h"

namespace corvanta {

const ParamTable<WriteXmlParams> &writeXmlParamTable()
{
    using P = WriteXmlParams;
    static const ParamTable<P> table{
        text<P>("fileName", &P::fileName).outputFile().label("File").meaning("XML file to write."),
        shared::fileMode<P>(),
        choice("charMode", &P::charMode,
               {{CharMode::Utf8WithMark, "UTF-8 with byte-order mark"},
                {CharMode::Utf8, "UTF-8"},
                {CharMode::Utf16WithMark, "UTF-16LE with byte-order mark"},
                {CharMode::Utf16, "UTF-16LE"}})
            .label("Encoding")
            .meaning("Encoding of the file."),
        shared::checkNameCollision<P>(),
        shared::createDir<P>(),
        shared::rowFilter<P>(),
        flag("useComma", &P::useComma)
            .label("Decimal comma")
            .meaning("Writes a decimal comma instead of the decimal point."),
        flag("humanReadable", &P::humanReadable)
            .label("Indent the elements")
            .meaning("Writes indented elements, one per line."),
        flag("wellFormed", &P::wellFormed)
            .label("Well-formed for all cells")
            .meaning("Escapes what parsers would reject or change, writes U+FFFD for characters "
                     "that are not allowed in XML, and makes names of elements and attributes "
                     "valid and distinct."),
        text("indentStart", &P::indentStart)
            .label("Indent of the outermost level")
            .meaning("Number of spaces before an element of the first level; each level below has "
                     "two more."),
        shared::valueForms<P>("write the null form", "write an empty value"),
        shared::alwaysWrite<P>(),
        shared::fileContent<P>(),
    };
    return table;
}

} // namespace corvanta
