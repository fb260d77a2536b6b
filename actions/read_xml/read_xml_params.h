// The parameters of readXML.
#pragma once
#include "actions/shared/params/level_reader_params.h"
#include "corvanta/params/param_table.h"

namespace corvanta {

/// Names of parameters, for problems with them and for auto-fill.
inline constexpr char kXmlEncoding[] = "encoding";
inline constexpr char kXmlTagSoup[] = "tagSoup";
inline constexpr char kXmlExpandSpans[] = "expandSpans";
inline constexpr char kXmlReadClearTags[] = "readClearTags";

struct ReadXmlParams : LevelReaderParams
{
    ReadXmlParams() { bufferSize = 10; }

    /// Name of an encoding; "Auto": the document's own, "System": that of the system.
    QString encoding = QStringLiteral("Auto");
    /// Column of input pin 0 with the texts; ignored when reading a file.
    QString colXML;
    /// Skip bytes that cannot be converted, with one warning per document. Off: they fail the run.
    bool iconvDiscardUnconvertible = true;
    /// CDATA sections and <PRE> blocks are text of their element.
    bool readClearTags = false;
    /// The document is HTML, possibly malformed.
    bool readHTML = false;
    /// The text of an element includes that of its sub-elements, with white space collapsed.
    bool addOnlyText = false;
    /// Indexes in paths count from 0. Off: from 1.
    bool zeroBased = true;
    /// An element that contains only sub-elements is read as their names. Off: as missing.
    bool outputTagNames = false;
    /// A structure error skips the rest of the document. Off: it fails the run.
    bool skipCorruptedFiles = false;
    /// Lists of names are sorted, with counts. Off: in document order.
    bool tagNameSummary = true;
    /// Keep unknown entities unchanged. Off: they are structure errors.
    bool ignoreUnknownEntities = false;
    /// Elements without content give no rows and no names; they still count in indexes.
    bool ignoreEmptyTag = false;
    /// Accept invalid characters in names. Off: they are structure errors.
    bool ignoreInvalidCharInTagName = false;
    /// Cells are 1 or 0, for an element that exists or not, instead of its text.
    bool getTagPresenceFlag = false;
    /// Names lose their namespace prefix before they are compared with paths.
    bool discardNameSpaces = false;
    /// Put the columns of the input row before the extracted ones; only with the input pin.
    bool addColBefore = false;
    /// Occurrences of the first level that are skipped at the start of each document.
    int skipRows = 0;
    /// Pages are read as browsers read them; only with readHTML.
    bool tagSoup = false;
    /// Cells of tables that span columns or rows have their value in each of them; only with
    /// readHTML.
    bool expandSpans = false;
};

/// Constant; made by the first call.
const ParamTable<ReadXmlParams> &readXmlParamTable();

/// Settings with which a new action on an HTML file starts. Read the saved attributes again after
/// it: those that exist override these settings.
void applyHtmlDefaults(ReadXmlParams &params);

} // namespace corvanta
