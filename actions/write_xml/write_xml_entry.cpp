#include "actions/write_xml/write_xml.h"
#include "actions/write_xml/write_xml_panel.h"

namespace corvanta {

namespace {

// An empty floatToString gives the fewest digits that read back as the same number, wellFormed
// makes the file readable for all cells, and alwaysWrite gives a table without rows an empty
// document.
constexpr FileFormat kFormats[] = {
    {FileFormat::Write, FileFormat::Markup, "xml", "floatToString= wellFormed=1 alwaysWrite=1"},
};

} // namespace

const ActionEntry kWriteXmlEntry = {
    .typeName = "writeXML",
    .description = "Create a multi-level XML file",
    .helpPage = "5_27_12_xml_file_writer",
    .icon = ":/WriteReport/xml_write.svg",
    .saveVersion = 4.11,
    .keywords = "file export output save level multi xml write out",
    .pinsIn = 1,
    .pinsOut = 1, // every input row, written or not
    .makeAction = makeAction<ActionWriteXML>,
    .makePanel = makePanel<Interface_ActionWriteXML>,
    .formats = kFormats,
};

} // namespace corvanta
