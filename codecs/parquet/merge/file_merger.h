// Merges Parquet files: copies their row groups without decoding them, and writes one footer.
//
// Fields of the metadata that this program does not know are kept. Every offset is shifted, or left
// out with what it refers to. In memory are only the merged footer and one footer of a
// part. Layout: docs/formats/parquet.md. Threads: one at a time per object.
#pragma once
#include "codecs/parquet/merge/schema_join.h"

#include <vector>

namespace corvanta::parquet {

/// What the merged file does not have.
struct MergeFindings
{
    /// Parts with other key-value metadata than the first one, whose metadata is kept; index of the
    /// first such part, from 0.
    qint64 otherMetadata = 0;
    qsizetype firstOther = -1;
    qint64 pageIndexes = 0;  ///< chunks whose page index is left out
    qint64 bloomFilters = 0; ///< chunks whose Bloom filter is left out
};

class FileMerger final : public PartMerger
{
public:
    explicit FileMerger(MergeMatch match)
        : m_join(match)
    {
    }
    /// Reads the schema and the key-value metadata.
    Done addPart(ByteSource &source) override;
    Done begin(ByteSink &sink) override;
    /// The rows are those of the row groups, whatever the footer says.
    Result<qint64, MergeError> copyPart(ByteSource &source, ByteSink &sink) override;
    Done finish(ByteSink &sink) override;

    /// What begin() does before it writes. Errors: Different.
    Done finishColumns() { return m_join.finish(); }
    const MergeFindings &findings() const { return m_findings; }

private:
    struct Part;
    struct SourceChunk;
    struct Group;

    Result<Part, MergeError> open(ByteSource &source) const;
    Done copyGroup(const Part &part, const RawStruct &group, ByteSink &sink);
    Done copyColumn(const Part &part, size_t column, Group *group, ByteSink &sink);
    Done copyChunk(const Part &part, const SourceChunk &source, Group *group, ByteSink &sink);
    Done addLevels(const Part &part, const MergedColumn &column, RawStruct *meta, ByteSink &sink);
    static std::optional<RawStruct> readHeader(const Part &part, qint64 at, qint64 end,
                                               qint64 *size);
    static QByteArray readBytes(const Part &part, qint64 begin, qint64 size);
    Done copyBloomFilter(const Part &part, RawStruct *meta, ByteSink &sink);
    Done addNulls(const MergedLeaf &leaf, Group *group, ByteSink &sink);
    Done copyIndexes(const Part &part, Group *group, ByteSink &sink);
    void addGroup(const Part &part, RawStruct raw, const Group &group);
    void noteMetadata(const RawStruct &metaData);
    Done copyBytes(const Part &part, qint64 begin, qint64 size, ByteSink &sink);

    SchemaJoin m_join;
    RawStruct m_metaData; // of the first part, without row groups
    qsizetype m_parts = 0;
    qint64 m_version = 0; // the highest of the parts
    QByteArray m_groups;  // encoded
    qint32 m_groupCount = 0;
    qint64 m_rows = 0;
    std::vector<char> m_buffer;
    bool m_hasOtherCreators = false; // parts of several programs
    MergeFindings m_findings;
};

} // namespace corvanta::parquet
