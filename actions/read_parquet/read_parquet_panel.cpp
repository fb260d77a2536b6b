// The columns of the file are offered and not filled in: what is listed is read, and later files
// may have more.
#include "actions/read_parquet/read_parquet_panel.h"

#include "panels/fill/file_columns.h"
#include "panels/preview/preview.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Source"), {"fileName", "fileNameFromPin"}},
        {QT_TRANSLATE_NOOP("Panels", "Columns"),
         {"columnSelection", {"ColumnsToRead", editor<FileColumnPicker>}, "outputFilenames"}},
        {QT_TRANSLATE_NOOP("Panels", "Values"), {"logicalTypes", "booleanTexts", "int64ToKey"}},
        previewGroup(),
        {kAdvancedGroup,
         {"extendedEncodings", "skipUnreadable", "allowEmpty", "pageChecksums", "abortIfMissing",
          "firstRow", "rowCount"},
         Fold::Folded},
    };
}

} // namespace

Interface_ActionReadParquet::Interface_ActionReadParquet(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
