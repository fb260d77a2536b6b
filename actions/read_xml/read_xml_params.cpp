#include "actions/read_xml/read_xml_params.h"

#include "actions/shared/reader_params.h"

namespace corvanta {

void applyHtmlDefaults(ReadXmlParams &params)
{
    params.readHTML = true;
    params.zeroBased = false;
    params.ignoreUnknownEntities = true;
    params.ignoreEmptyTag = true;
    params.ignoreInvalidCharInTagName = true;
}

const ParamTable<ReadXmlParams> &readXmlParamTable()
{
    using P = ReadXmlParams;
    static const ParamTable<P> table{
        text("encoding", &P::encoding)
            .label("Encoding")
            .meaning("Auto finds it out, System is the system's code page; else the name of an "
                     "encoding."),
        text("colXML", &P::colXML)
            .label("XML column")
            .meaning("Input column that holds the XML texts."),
        number("fromInputPin", &P::fromInputPin)
            .choices({"from the file", "from input pin 0"})
            .label("Read the XML")
            .meaning("Reads the file fileName, or the texts in colXML of the rows of input pin 0."),
        flag("iconvDiscardUnconvertible", &P::iconvDiscardUnconvertible)
            .label("Drop invalid bytes")
            .meaning(
                "Drops bytes that cannot be converted, with a warning. Off: they fail the action."),
        shared::bufferSize<P>(),
        shared::autoFillNRows<P>(),
        text("fileName", &P::fileName)
            .inputFile()
            .always()
            .label("File")
            .meaning("XML or HTML file to read, a pattern, or a member of an archive "
                     "(archive.zip@member)."),
        flag("readClearTags", &P::readClearTags)
            .label("Read CDATA sections")
            .meaning("Reads CDATA sections and <PRE> blocks as text of their element."),
        flag("readHTML", &P::readHTML).label("HTML").meaning("Reads loosely written HTML pages."),
        shared::outputFilenames<P>(),
        shared::outputSubTags<P>(),
        flag("addOnlyText", &P::addOnlyText)
            .label("Only the text of an element")
            .meaning(
                "Takes all the text in an element, also that of its sub-elements, without tags and "
                "with its blanks folded. Off: the text that stands directly in it."),
        flag("zeroBased", &P::zeroBased)
            .label("Indexes in paths count from 0")
            .meaning("Indexes in paths count from 0. Off: from 1."),
        flag("outputTagNames", &P::outputTagNames)
            .label("Output the tag names")
            .meaning(
                "An element that holds only sub-elements gives their names. Off: a missing value."),
        flag("skipCorruptedFiles", &P::skipCorruptedFiles)
            .label("Skip the rest of damaged files")
            .meaning("A structure error skips the rest of the file, with a warning. Off: it fails "
                     "the action."),
        flag("tagNameSummary", &P::tagNameSummary)
            .label("Sorted summary of tag names")
            .meaning("Cells of tag names list them in alphabetical order with their counts. Off: "
                     "in document order."),
        flag("ignoreUnknownEntities", &P::ignoreUnknownEntities)
            .label("Accept unknown entities")
            .meaning("Leaves unknown entities as they stand. Off: they are structure errors."),
        flag("ignoreEmptyTag", &P::ignoreEmptyTag)
            .label("Ignore empty elements")
            .meaning("Elements without text, sub-elements and attributes make no rows and are not "
                     "named; "
                     "they still count in indexes."),
        flag("ignoreInvalidCharInTagName", &P::ignoreInvalidCharInTagName)
            .label("Accept invalid characters in tag names")
            .meaning("Accepts invalid characters in tag names. Off: they are structure errors."),
        flag("getTagPresenceFlag", &P::getTagPresenceFlag)
            .label("Output whether the element is there")
            .meaning("Gives 1 or 0, whether the element is there, instead of its text."),
        flag("discardNameSpaces", &P::discardNameSpaces)
            .label("Drop name space prefixes")
            .meaning("Drops the name space prefixes of elements."),
        shared::abortIfMissing<P>(),
        shared::timeOut<P>(),
        shared::copyOfInputRow("addColBefore", &P::addColBefore),
        number("skipRows", &P::skipRows)
            .range(0, 1000000)
            .label("Rows to skip")
            .meaning("Occurrences of the first level that are left out at the beginning of each "
                     "document, "
                     "such as the row with the names of an HTML table."),
        readLevels(&P::levels),
    };
    return table;
}

} // namespace corvanta
