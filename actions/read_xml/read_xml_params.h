// The parameters of readXML.
#pragma once
#include "actions/shared/params/document_source.h"
#include "actions/shared/params/read_levels.h"
#include "corvanta/param_table.h"

namespace corvanta {

struct ReadXmlParams
{
    QString encoding = QStringLiteral("Auto");
    QString colXML;
    DocumentSource fromInputPin = DocumentSource::File;
    bool iconvDiscardUnconvertible = true;
    int bufferSize = 10;
    int autoFillNRows = 100;
    QString fileName;
    bool readClearTags = false;
    bool readHTML = false;
    bool outputFilenames = false;
    bool outputSubTags = false;
    bool addOnlyText = false;
    bool zeroBased = true;
    bool outputTagNames = false;
    bool skipCorruptedFiles = false;
    bool tagNameSummary = true;
    bool ignoreUnknownEntities = false;
    bool ignoreEmptyTag = false;
    bool ignoreInvalidCharInTagName = false;
    bool getTagPresenceFlag = false;
    bool discardNameSpaces = false;
    bool abortIfMissing = true;
    int timeOut = 0;
    bool addColBefore = false;
    int skipRows = 0;
    std::vector<ReadLevel> levels;
};

const ParamTable<ReadXmlParams> &readXmlParamTable();

/// Settings with which a new action on an HTML file starts; attributes that are there win.
void applyHtmlDefaults(ReadXmlParams &params);

} // namespace corvanta
