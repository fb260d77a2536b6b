#include "actions/read_xml/read_xml_params.h"

namespace corvanta {

namespace {

using P = ReadXmlParams;

/// Where documents come from, and how their bytes become characters.
ParamGroup<P> sourceOfDocuments()
{
    return {
        text(kXmlEncoding, &P::encoding)
            .expanded()
            .label("Encoding")
            .meaning("Auto detects the encoding, System is the system's code page; otherwise the "
                     "name of an encoding."),
        shared::documentColumn("colXML", &P::colXML)
            .label("XML column")
            .meaning("Input column that holds the XML texts."),
        shared::fromInputPin<P>("Read the XML",
                                "Reads the file fileName, or the texts in colXML of "
                                "the rows of input pin 0."),
        flag("iconvDiscardUnconvertible", &P::iconvDiscardUnconvertible)
            .label("Skip invalid bytes")
            .meaning(
                "Skips bytes that cannot be converted, with a warning. Off: the action fails."),
    };
}

/// The file, and the kind of its content.
ParamGroup<P> file()
{
    return {
        shared::bufferSize<P>(),
        shared::autoFillNRows<P>(),
        shared::documentFile<P>("XML or HTML file"),
        flag(kXmlReadClearTags, &P::readClearTags)
            .label("Read CDATA sections")
            .meaning("Reads CDATA sections and <PRE> blocks as text of their element."),
        flag("readHTML", &P::readHTML)
            .label("The file is HTML")
            .meaning("Reads HTML, including malformed pages."),
    };
}

/// The columns, and the cells of an element.
ParamGroup<P> columnsAndText()
{
    return {
        shared::outputFilenames<P>().onlyWhen("fromInputPin", {QStringLiteral("0")}),
        shared::outputSubTags<P>(),
        flag("addOnlyText", &P::addOnlyText)
            .label("Only the text of an element")
            .meaning("Reads all the text in an element, including its sub-elements, without tags "
                     "and with each run of spaces as one space. Off: only the text directly in the "
                     "element."),
        flag("zeroBased", &P::zeroBased)
            .label("Indexes in paths count from 0")
            .meaning("Indexes in paths count from 0. Off: from 1."),
    };
}

/// Names of elements as values, and documents with errors.
ParamGroup<P> namesAndDamage()
{
    return {
        flag("outputTagNames", &P::outputTagNames)
            .label("Output the tag names")
            .meaning("Reads an element that contains only sub-elements as the names of those. Off: "
                     "as a missing value."),
        flag("skipCorruptedFiles", &P::skipCorruptedFiles)
            .label("Skip the rest of damaged files")
            .meaning("Skips the rest of a file after a structure error, with a warning. Off: the "
                     "action fails."),
        flag("tagNameSummary", &P::tagNameSummary)
            .label("Sorted summary of tag names")
            .meaning(
                "Lists tag names in alphabetical order with their counts. Off: in document order."),
    };
}

/// What malformed documents may contain.
ParamGroup<P> tolerance()
{
    return {
        flag("ignoreUnknownEntities", &P::ignoreUnknownEntities)
            .label("Accept unknown entities")
            .meaning("Leaves unknown entities unchanged. Off: they are structure errors."),
        flag("ignoreEmptyTag", &P::ignoreEmptyTag)
            .label("Ignore empty elements")
            .meaning("Ignores elements without text, sub-elements and attributes in rows and lists "
                     "of names; they still count in indexes."),
        flag("ignoreInvalidCharInTagName", &P::ignoreInvalidCharInTagName)
            .label("Accept invalid characters in tag names")
            .meaning("Accepts invalid characters in tag names. Off: they are structure errors."),
    };
}

/// What of an element is compared or put out.
ParamGroup<P> presenceAndPrefixes()
{
    return {
        flag("getTagPresenceFlag", &P::getTagPresenceFlag)
            .label("Output whether the element exists")
            .meaning("Outputs 1 if the element exists, else 0, instead of its text."),
        flag("discardNameSpaces", &P::discardNameSpaces)
            .label("Remove namespace prefixes")
            .meaning("Removes the namespace prefixes of elements."),
    };
}

/// What comes before the extracted columns and rows.
ParamGroup<P> beforeTheRows()
{
    return {
        shared::copyOfInputRow("addColBefore", &P::addColBefore),
        number("skipRows", &P::skipRows)
            .range(0, 1000000)
            .unit("rows")
            .label("Rows to skip")
            .meaning("Number of occurrences of the first level that are skipped at the beginning "
                     "of each document, for example the header row of an HTML table."),
    };
}

/// How pages are read.
ParamGroup<P> pages()
{
    const QStringList html{QStringLiteral("1")};
    return {
        flag(kXmlTagSoup, &P::tagSoup)
            .onlyWhen("readHTML", html)
            .label("Read pages as browsers do")
            .meaning("Reads malformed pages as browsers do: adds missing end tags, decodes all "
                     "entities of HTML, uses the encoding in <meta> and never fails."),
        flag(kXmlExpandSpans, &P::expandSpans)
            .onlyWhen("readHTML", html)
            .label("Expand cells that span columns or rows")
            .meaning("Repeats the value of a cell with colspan or rowspan in each column and row "
                     "of its table. Rows in thead and tfoot are rows of the table, and [n] is its "
                     "column number n."),
    };
}

} // namespace

void applyHtmlDefaults(ReadXmlParams &params)
{
    params.readHTML = true;
    // Paths copied from a browser count from 1.
    params.zeroBased = false;
    params.ignoreUnknownEntities = true;
    params.ignoreEmptyTag = params.ignoreInvalidCharInTagName = true;
}

const ParamTable<ReadXmlParams> &readXmlParamTable()
{
    // The order is that of saved graphs.
    static const ParamTable<P> table{
        sourceOfDocuments(),
        file(),
        columnsAndText(),
        namesAndDamage(),
        tolerance(),
        presenceAndPrefixes(),
        shared::missingFiles<P>(),
        beforeTheRows(),
        pages(),
        shared::warnUnread<P>()
            .onlyWhen("readHTML", {QStringLiteral("0")})
            .onlyWhen("addOnlyText", {QStringLiteral("0")})
            .onlyWhen("getTagPresenceFlag", {QStringLiteral("0")}),
        shared::columnTypes<P>(),
        readLevels<P>(&P::levels),
    };
    return table;
}

} // namespace corvanta
