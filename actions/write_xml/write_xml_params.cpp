#include "actions/write_xml/write_xml_params.h"

#include "codecs/compose/xml_levels.h"

using namespace Qt::StringLiterals;

// The lines are in the order of saved graphs.
namespace corvanta {

namespace {

using P = WriteXmlParams;

const WriteLevelTables &levelTables()
{
    using compose::XmlItem;
    static const WriteLevelTables tables{
        std::initializer_list<Choice<XmlItem>>{
            {XmlItem::Text, "A simple text", "Writes the text as it is."},
            {XmlItem::Attributes, "All columns stored inside different XML Tag Attributes",
             "Writes name=\"value\" for every column of the input."},
            {XmlItem::SomeAttributes,
             "Some user-selected columns stored inside different XML Tag Attributes",
             "Writes name=\"value\" for the chosen columns."},
            {XmlItem::Subtags, "All columns stored inside XML subtags",
             "Writes an element with the value for every column of the input."},
            {XmlItem::SomeSubtags, "Some user-selected columns stored inside XML subtags",
             "Writes an element with the value for the chosen columns."},
            {XmlItem::InQuotes, "One column to be placed inside quotes",
             "Writes the value of the first chosen column between double quotes."},
            {XmlItem::InTag, "One column to be placed inside a tag",
             "Writes the value of the first chosen column as the text of an element."},
            {XmlItem::AsIs, "One pre-formated column \"as-is\"",
             "Writes the text of the first chosen column without escapes."},
            {XmlItem::SubLevel, "An XML-writer sub-level", "Writes the elements of another level."},
        },
        {{u"0"_s}, {u"8"_s}, {u"2"_s}, {u"2"_s, u"4"_s, u"5"_s, u"6"_s, u"7"_s}}};
    return tables;
}

/// The form of numbers, elements and names. wellFormed is off by default: the file is then
/// well-formed only if names and cells hold nothing that XML forbids.
ParamGroup<P> elementForms()
{
    return {
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
            .wholeNumber(0, 1000)
            .otherwise("uses the nearest allowed number, 0 for a text")
            .onlyWhen("humanReadable", {QStringLiteral("1")})
            .label("Indent of the outermost level")
            .meaning("Number of spaces before an element of the first level; each level below has "
                     "two more."),
    };
}

} // namespace

const ParamTable<WriteXmlParams> &writeXmlParamTable()
{
    static const ParamTable<P> table{
        text<P>("fileName", &P::fileName)
            .outputFile()
            .required()
            .label("File")
            .meaning("XML file to write."),
        shared::fileMode<P>(),
        choice("charMode", &P::charMode,
               {{CharMode::Utf8WithMark, "UTF-8 with byte-order mark"},
                {CharMode::Utf8, "UTF-8"},
                {CharMode::Utf16WithMark, "UTF-16LE with byte-order mark"},
                {CharMode::Utf16, "UTF-16LE"}})
            .otherwise("writes UTF-8 without a byte-order mark")
            .label("Encoding")
            .meaning("Encoding of the file."),
        shared::checkNameCollision<P>(),
        shared::createDir<P>(),
        shared::rowFilter<P>(),
        elementForms(),
        shared::valueForms<P>("write the null form", "write an empty value"),
        shared::alwaysWrite<P>(),
        shared::lockTimeOut<P>(),
        // Child elements come after all attributes.
        shared::fileContent<P>(levelTables()),
    };
    return table;
}

} // namespace corvanta
