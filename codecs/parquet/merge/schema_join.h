// Finds the columns of a file that consists of the row groups of several files.
//
// A column is a child of the schema's root with everything below it. Columns with equal names
// belong together. Threads: one at a time per object.
#pragma once
#include "codecs/merge/part_merger.h"
#include "codecs/parquet/merge/raw_struct.h"

#include <QByteArray>

#include <map>
#include <vector>

namespace corvanta::parquet {

/// A leaf of the schema, which has a chunk in each row group.
struct MergedLeaf
{
    QByteArray path; ///< the encoded list of the names from the root's child to the leaf
    qint32 physical = 0;
    int maxDefinition = 0; ///< definition level of a value
    int maxRepetition = 0; ///< repetition level of a value
    QByteArray order;      ///< the encoded ColumnOrder; empty: none
};

/// A child of the root: a leaf, or a group such as a list.
struct MergedColumn
{
    QByteArray name;                 ///< UTF-8
    std::vector<RawStruct> elements; ///< depth first; the first one is the column itself
    std::vector<MergedLeaf> leaves;
    size_t firstLeaf = 0; ///< index of its first leaf in the file

    qint32 repetition() const; ///< a Repetition
    bool isLeaf() const { return elements.size() == 1; }
};

/// The columns of one file.
struct FileColumns
{
    RawStruct root;
    std::vector<MergedColumn> columns;
    size_t leafCount = 0;

    /// From the encoded FileMetaData. Errors: Damaged.
    static Result<FileColumns, MergeError> of(const RawStruct &metaData);
};

/// Call add() for each file, finish(), and then columnsIn() for the files that are copied.
class SchemaJoin
{
public:
    /// Index of a column that a file does not have.
    static constexpr int kMissing = -1;

    explicit SchemaJoin(MergeMatch match)
        : m_match(match)
    {
    }
    /// Add the columns of the next file. A column may be required in one file and optional in
    /// another; everything else must be equal. Errors: Different.
    Result<void, MergeError> add(const FileColumns &file);
    /// Call after the last add(). Makes columns optional that are not in all files. Errors:
    /// Different, for a required group that is missing in a file.
    Result<void, MergeError> finish();

    // After finish():

    const std::vector<MergedColumn> &columns() const { return m_columns; }
    /// The elements of the schema, the root included.
    std::vector<QByteArray> schema() const;
    /// The encoded column orders, one per leaf; empty unless all files have the same.
    std::vector<QByteArray> orders() const;
    /// For each column of the result its index in a file, or kMissing. Errors: Different, for a
    /// file that has changed since add().
    Result<std::vector<int>, MergeError> columnsIn(const FileColumns &file) const;

private:
    struct State
    {
        qsizetype files = 0; // that have the column
        bool isOptional = false;
    };
    Result<void, MergeError> checkSame(const FileColumns &file) const;
    Result<void, MergeError> addColumn(const MergedColumn &column);
    int indexOf(const QByteArray &name) const;

    MergeMatch m_match;
    RawStruct m_root;
    std::vector<MergedColumn> m_columns;
    std::vector<State> m_states;         // by column
    std::map<QByteArray, int> m_indexes; // of columns, by name
    qsizetype m_files = 0;
    bool m_hasOrders = true;
};

} // namespace corvanta::parquet
