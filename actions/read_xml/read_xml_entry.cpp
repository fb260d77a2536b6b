#include "actions/read_xml/read_xml.h"
#include "actions/read_xml/read_xml_panel.h"

namespace corvanta {

namespace {

// In "convert" no user corrects the levels, so that more records are examined to find them. Text in
// CDATA sections and documents with unknown entities are read instead of losing or rejecting them.
constexpr FileFormat kFormats[] = {
    {FileFormat::Read, FileFormat::Markup, "xml",
     "autoFillNRows=10000 readClearTags=1 ignoreUnknownEntities=1"},
    {FileFormat::Read, FileFormat::Markup, "html htm",
     "autoFillNRows=10000 readClearTags=1 tagSoup=1 expandSpans=1"},
};

} // namespace

const ActionEntry kReadXmlEntry = {
    .typeName = "readXML",
    .description = "Read and Parse a multi-level XML file",
    .helpPage = "5_2_10_xml_html_file_reader",
    .icon = ":/WriteReport/xml_read.svg",
    .saveVersion = 2.93,
    .fileTypes = "xml html htm",
    .tags = "Common",
    .keywords = "file import input load xml read in",
    .pinsIn = 0,
    .pinsOut = 1,
    .maxPinsIn = 1,
    .makeAction = makeAction<ActionReadXML>,
    .makePanel = makePanel<Interface_ActionReadXML>,
    .formats = kFormats,
};

} // namespace corvanta
