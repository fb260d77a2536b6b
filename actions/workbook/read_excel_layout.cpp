#include "actions/workbook/read_excel_layout.h"

#include "panels/fill/auto_fill.h"
#include "panels/preview/preview.h"

namespace corvanta {

PanelLayout readExcelLayout()
{
    using Fold = PanelGroup::Fold;
    return {
        {QT_TRANSLATE_NOOP("Panels", "Source"), {"fileName", "fileNameFromPin"}},
        {QT_TRANSLATE_NOOP("Panels", "Sheet"),
         {"sheets", "sheetMode", "sheetIdx", "sheetName"},
         Fold::Open,
         extra<AutoFill>},
        {QT_TRANSLATE_NOOP("Panels", "Cells"),
         {"range", "skipRows", "firstLineContainsColumnNames", "emptyRows"}},
        {QT_TRANSLATE_NOOP("Panels", "Values"),
         {"allText", "scanRows", "sampleOnly", "dates", "errorCells", "fillMerged"},
         Fold::Folded},
        {QT_TRANSLATE_NOOP("Panels", "Added columns"),
         {"outputFilenames", "outputSheetNames", "unionByName"},
         Fold::Folded},
        previewGroup(),
        {kAdvancedGroup,
         {"skipHiddenSheets", "skipHiddenRows", "skipHiddenColumns", "abortIfMissing", "timeOut"},
         Fold::Folded},
    };
}

} // namespace corvanta
