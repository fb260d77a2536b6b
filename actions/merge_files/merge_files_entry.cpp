#include "actions/merge_files/merge_files.h"
#include "actions/merge_files/merge_files_panel.h"

namespace corvanta {

// Not a format of `convert`: the command "merge" uses the action.
const ActionEntry kMergeFilesEntry = {
    .typeName = "mergeFiles",
    .description = "Join files of one format",
    .icon = ":/Tables/mergeFiles.svg",
    .tags = "Common",
    .keywords = "merge join concatenate files parts parquet csv json",
    .pinsIn = 0,
    .pinsOut = 1,
    .makeAction = makeAction<ActionMergeFiles>,
    .makePanel = makePanel<Interface_ActionMergeFiles>,
};

} // namespace corvanta
