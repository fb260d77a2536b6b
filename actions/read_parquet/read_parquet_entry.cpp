#include "actions/read_parquet/read_parquet.h"
#include "actions/read_parquet/read_parquet_panel.h"

namespace corvanta {

namespace {

// These options are off in a new action because saved graphs must read the same files in every
// version. "convert" has no saved graphs: it reads all that the codec can read.
constexpr FileFormat kFormats[] = {
    {FileFormat::Read, FileFormat::Columnar, "parquet",
     "extendedEncodings=1 logicalTypes=1 booleanTexts=1 skipUnreadable=1 allowEmpty=1 "
     "pageChecksums=1"},
};

} // namespace

const ActionEntry kReadParquetEntry = {
    .typeName = "readParquet",
    .description = "Read a parquet file",
    .icon = ":/WriteReport/parquet_read.png",
    .saveVersion = 2.08,
    .fileTypes = "parquet",
    .tags = "Uncommon",
    .keywords = "file import input load parquet read in",
    .pinsIn = 0,
    .pinsOut = 1,
    .maxPinsIn = 2,
    .makeAction = makeAction<ActionReadParquet>,
    .makePanel = makePanel<Interface_ActionReadParquet>,
    .formats = kFormats,
};

} // namespace corvanta
