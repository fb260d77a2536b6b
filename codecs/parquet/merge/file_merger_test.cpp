// Parts that are refused, and why. What is merged: tests/merge.
#include "base/byte_sink.h"
#include "codecs/parquet/merge/file_merger.h"
#include "tests/support/small_parquet.h"

#include <functional>

using namespace corvanta;
using namespace corvanta::parquet;

namespace {

/// Why the parts cannot be merged; empty if they can. The last part is read with other bytes the
/// second time, if there are any.
std::string refusal(std::vector<QByteArray> parts, const QByteArray &changed = {},
                    MergeMatch match = MergeMatch::Same)
{
    FileMerger merger(match);
    MemorySink sink;
    for (const QByteArray &part : parts) {
        MemorySource source(part);
        if (const auto added = merger.addPart(source); !added) {
            return added.fault().detail.toStdString();
        }
    }
    if (const auto begun = merger.begin(sink); !begun) {
        return begun.fault().detail.toStdString();
    }
    parts.back() = changed.isEmpty() ? parts.back() : changed;
    for (const QByteArray &part : parts) {
        MemorySource source(part);
        if (const auto copied = merger.copyPart(source, sink); !copied) {
            return copied.fault().detail.toStdString();
        }
    }
    return merger.finish(sink) ? std::string() : "not finished";
}

/// The column "t" in a group "g", which may be missing in rows.
QByteArray nestedFile(const char *field, qint32 repetition, int moreFields = 0)
{
    SmallFile file = smallFile();
    SchemaElement group;
    group.name = "g";
    group.numChildren = 1 + moreFields;
    group.repetitionType = repetition;
    file.column().name = field;
    file.chunk().metaData->pathInSchema = {"g", field};
    file.meta.schema.insert(file.meta.schema.begin() + 1, std::move(group));
    for (int i = 0; i < moreFields; ++i) {
        SchemaElement more;
        more.name = "more";
        more.type = kInt32;
        more.repetitionType = kRequired;
        file.meta.schema.push_back(std::move(more));
    }
    return file.bytes();
}

} // namespace

TEST(FileMerger, DamagedAndUnsupportedPartsAreRefused)
{
    ASSERT_EQ(refusal({smallFile().bytes(), smallFile().bytes()}), "");
    const std::pair<std::function<void(SmallFile &)>, const char *> cases[] = {
        {[](SmallFile &f) { f.group().columns.clear(); }, "a row group is damaged"},
        {[](SmallFile &f) { f.group().numRows = -1; }, "a row group is damaged"},
        {[](SmallFile &f) { f.chunk().filePath = "x.parquet"; },
         "the data of column 't' is in another file"},
    };
    for (const auto &[edit, reason] : cases) {
        SmallFile file = smallFile();
        edit(file);
        EXPECT_EQ(refusal({smallFile().bytes(), file.bytes()}), reason);
    }
}

TEST(FileMerger, NestedColumnsMustBeEqual)
{
    const QByteArray first = nestedFile("t", kOptional);
    EXPECT_EQ(refusal({first, nestedFile("t", kRepeated)}),
              "column 'g' has another nesting than in the first part");
    EXPECT_EQ(refusal({first, nestedFile("t", kOptional, 1)}),
              "column 'g' has other nested fields than in the first part");
    EXPECT_EQ(refusal({first, nestedFile("u", kOptional)}),
              "column 'g' has a nested field 'u' that has another nesting than in the first part");
    EXPECT_EQ(refusal({nestedFile("t", kRequired), smallFile().bytes()}, {}, MergeMatch::Names),
              "column 'g' is a required group, and a part does not have it");
}

TEST(FileMerger, PartsThatChangeDuringTheMerge)
{
    SmallFile other = smallFile();
    other.column().name = "u";
    EXPECT_EQ(refusal({smallFile().bytes()}, other.bytes()),
              "column 'u' has changed during the merge");
}
