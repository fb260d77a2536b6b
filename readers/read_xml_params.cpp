#include "readers/read_xml_params.h"

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
            .meaning("From fileName, or one document per row from colXML."),
        flag("iconvDiscardUnconvertible", &P::iconvDiscardUnconvertible)
            .label("Drop invalid bytes")
            .meaning("With a warning. Off: they fail the action."),
        number("bufferSize", &P::bufferSize)
            .range(1, 2047)
            .label("Minimum Input Buffer Size:")
            .meaning("In MB."),
        number("autoFillNRows", &P::autoFillNRows)
            .range(1, 1000000)
            .label("Sample")
            .meaning("Records that are looked at when levels are filled automatically."),
        text("fileName", &P::fileName)
            .inputFile()
            .always()
            .label("File")
            .meaning("XML or HTML file to read, a pattern, or a member of an archive "
                     "(archive.zip@member)."),
        flag("readClearTags", &P::readClearTags)
            .label("Read CDATA sections")
            .meaning("As text of their element."),
        flag("readHTML", &P::readHTML).label("HTML").meaning("Read loosely written pages."),
        flag("outputFilenames", &P::outputFilenames)
            .label("Add a column with the file name")
            .meaning("The last column, _FileNames."),
        flag("outputSubTags", &P::outputSubTags)
            .label("Add the names of the repeated elements")
            .meaning("One column \"Level N Subtag\" per level."),
        flag("addOnlyText", &P::addOnlyText)
            .label("Only the text of an element")
            .meaning("Without the text of its sub-elements."),
        flag("zeroBased", &P::zeroBased)
            .label("Indexes in paths count from 0")
            .meaning("Off: from 1."),
        flag("outputTagNames", &P::outputTagNames)
            .label("Output the tag names")
            .meaning("In front of the texts."),
        flag("skipCorruptedFiles", &P::skipCorruptedFiles)
            .label("Skip the rest of damaged files")
            .meaning("With a warning. Off: a structure error fails the action."),
        flag("tagNameSummary", &P::tagNameSummary)
            .label("Sorted summary of tag names")
            .meaning("Names in alphabetical order with their counts. Off: runs in document order."),
        flag("ignoreUnknownEntities", &P::ignoreUnknownEntities)
            .label("Accept unknown entities")
            .meaning("They stay as they stand."),
        flag("ignoreEmptyTag", &P::ignoreEmptyTag)
            .label("Ignore empty elements")
            .meaning("Elements without content."),
        flag("ignoreInvalidCharInTagName", &P::ignoreInvalidCharInTagName)
            .label("Accept invalid characters in tag names")
            .meaning("Off: they are structure errors."),
        flag("getTagPresenceFlag", &P::getTagPresenceFlag)
            .label("Output whether the element is there")
            .meaning("1 or 0 instead of the text."),
        flag("discardNameSpaces", &P::discardNameSpaces)
            .label("Drop name space prefixes")
            .meaning("Of elements and attributes."),
        flag("abortIfMissing", &P::abortIfMissing)
            .label("A missing file is an error")
            .meaning("Off: it is a warning."),
        number("timeOut", &P::timeOut)
            .range(0, 86400)
            .label("Retry for")
            .meaning("Seconds for which a file that cannot be read yet is tried again."),
        flag("addColBefore", &P::addColBefore)
            .label("Copy the columns of the input row")
            .meaning("In front of the extracted ones, when reading from the input pin."),
        readLevels(&P::levels),
    };
    return table;
}

} // namespace corvanta
