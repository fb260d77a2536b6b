#include "actions/write_parquet/write_parquet.h"
#include "actions/write_parquet/write_parquet_panel.h"

namespace corvanta {

namespace {

// Dictionary pages make smaller files, and statistics allow readers to skip row groups. The types
// of columns are those that the input has. A table without rows is written in any case. Small row
// groups need less memory, leave little to write after the last row, and other programs read
// several of them at a time.
constexpr FileFormat kFormats[] = {
    {FileFormat::Write, FileFormat::Columnar, "parquet",
     "dictionaryPages=1 statistics=1 logicalTypes=1 rowGroupSize=16"},
};

} // namespace

const ActionEntry kWriteParquetEntry = {
    .typeName = "writeParquet",
    .description = "Write a parquet file",
    .icon = ":/WriteReport/parquet_write.png",
    .saveVersion = 2.08,
    .keywords = "file export output save parquet write out",
    .pinsIn = 1,
    .pinsOut = 0,
    .makeAction = makeAction<ActionWriteParquet>,
    .makePanel = makePanel<Interface_ActionWriteParquet>,
    .formats = kFormats,
};

} // namespace corvanta
