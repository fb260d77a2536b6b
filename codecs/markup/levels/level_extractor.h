// Turns a document into rows of text cells, level by level.
//
// A row has the cells of one occurrence of each level. The occurrences of the first level come from
// the token stream (OccurrenceReader), those of the other levels from the tree of that occurrence.
#pragma once
#include "codecs/markup/levels/item_cells.h"
#include "codecs/markup/levels/leaf_columns.h"
#include "codecs/markup/levels/occurrence_reader.h"
#include "codecs/values/column_scan.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace corvanta::markup {

/// Threads: one at a time.
class LevelExtractor
{
public:
    /// There must be at least one level.
    LevelExtractor(const std::vector<Level> &levels, const ExtractOptions &options);
    LevelExtractor(const LevelExtractor &) = delete; // its parts refer to it
    LevelExtractor &operator=(const LevelExtractor &) = delete;

    /// Names of the columns: for each level its subtag column, if wanted, and its items.
    QStringList columnNames() const;
    /// Letters of the types of the columns; empty: all are texts.
    const std::string &columnTypes() const { return m_options.types; }
    int columnCount() const { return static_cast<int>(m_cells.size()); }

    /// How the places in unread() are written; placeText() by default.
    void setPlaceText(const PlaceText &placeText) { m_reader->setPlaceText(placeText); }
    /// Set the initial size of the memory of a record's tree, in bytes.
    void setBlockSize(qint64 bytes) { m_reader->setBlockSize(bytes); }

    /// From now on rows are only examined: next() adds the value of each column to its scan, one
    /// per column, and builds no cells. `scans` must outlive the extractor.
    void scanValues(std::span<values::ColumnScan> scans);
    /// Rows in all documents so far.
    qint64 rows() const { return m_rows; }
    /// Whether the objects at the top of the file are known to be records, as in JSON Lines.
    bool readsRecords() const { return m_reader->readsRecords(); }
    /// Continue in a file for which another extractor has said so. Call it after beginFile().
    void expectRecords() { m_reader->expectRecords(); }
    /// Count rows and lines of the file that another extractor has examined, before the next
    /// document.
    void skip(qint64 rows, qint64 lines)
    {
        m_rows += rows;
        m_reader->skipLines(lines);
    }

    /// Begin another file: missingPaths() forgets the previous one.
    void beginFile();
    /// Begin a document of the file. `tokenizer` must be new or restarted, and outlive the
    /// document; the extractor sets its options.
    void beginDocument(MarkupTokenizer &tokenizer);

    /// Read the next row: true for a row, false at the end of the document. Cells of the last level
    /// are in `arena`. Errors: those of the tokenizer, NoTagFound, TreeTooLarge, NoMemory; every
    /// later call returns the same error, until resume() returns true.
    Result<bool, MarkupResult> next(CellArena &arena);

    /// After an error: continue at the next line, if the data is JSON Lines. Returns false when the
    /// document cannot be read further.
    bool resume();
    /// Call at the end of a document, also after an error: completes unread(). Reads to the end of
    /// the source when a NUL ended the data.
    void endDocument() { m_reader->endDocument(); }
    /// What was not read since beginFile().
    UnreadParts unread() const;

    /// A value that is not of the type of its column.
    struct BadValue
    {
        QString column;
        QString value; ///< cut if it is long
        char letter = 'U';
    };
    /// The value for which next() has returned the error InvalidNumber; nothing if there is no such
    /// value in the document.
    const std::optional<BadValue> &badValue() const { return m_badValue; }

    /// The cells of the row, valid until the next call; a shared missing cell where there is no
    /// value.
    std::span<const uchar *const> cells() const { return m_cells; }

    /// Paths, as given, that the file does not have. Paths of a level without occurrences are not
    /// among them.
    QStringList missingPaths() const;

private:
    class LeafScan;

    bool isLast(size_t level) const { return level + 1 == m_levels.size(); }
    bool canTakeLeaves() const;
    LeafColumns leafColumns() const;
    void addSpans(const PathSyntax &syntax);
    bool readFirstLevel(CellArena &arena);
    bool beginTableRow(quint32 row);
    void skipFirst(quint32 occurrence);
    void enterLevels(size_t level, quint32 occurrence, CellArena &lastArena);
    void setTypes(size_t columns);
    /// Whether the cells of the column are numbers, not texts.
    bool isNumberColumn(size_t column) const
    {
        return !m_options.types.empty() &&
               (m_options.types[column] == 'K' || m_options.types[column] == 'F');
    }
    const uchar *nameCell(quint32 occurrence, size_t column, CellArena &arena);
    void fillRow(LevelState &state, CellArena &arena);
    void fillTypedCells(LevelState &state, CellArena &arena);
    /// The leaf that gives the cell of an item; null if the item is in the tree or missing.
    const MarkupTokenizer::Leaf *leafOf(LevelState &state, size_t item)
    {
        const MarkupTokenizer::Leaf *const leaf = m_leaves ? m_leaves->leafOf(item) : nullptr;
        const bool isTwice = leaf != nullptr && state.found[item] != MarkupTree::kNone;
        return isTwice ? firstOf(state, item, *leaf) : leaf;
    }
    const MarkupTokenizer::Leaf *firstOf(LevelState &state, size_t item,
                                         const MarkupTokenizer::Leaf &leaf);
    const uchar *typedCell(const LevelItem &item, quint32 found, const MarkupTokenizer::Leaf *leaf,
                           size_t column, CellArena &arena);
    const uchar *numberCell(std::string_view text, size_t column, CellArena &arena);
    void setBadValue(std::string_view text, size_t column);
    void fillCells(LevelState &state, CellArena &arena);
    void fillNumber(LevelState &state, CellArena &arena);
    void keepShared(LevelState &state);
    void repeatCells(LevelState &state, CellArena &arena);
    const uchar *cellOfKept(const uchar *kept, size_t column, CellArena &arena);
    QString placeOfRow(quint32 item) const;
    QString placeOfRow(const QString &place) const;
    void scanItems(LevelState &state, CellArena &arena);
    void scanItem(const LevelItem &item, quint32 found, CellArena &arena, values::ColumnScan *scan);
    template <class Place>
    void scanText(std::string_view text, bool isQuoted, const Place &place,
                  values::ColumnScan *scan) const;
    void scanCell(const uchar *cell, quint32 item, values::ColumnScan *scan) const;
    bool isReadOutside(const LevelState &state) const;
    Occurrences *oddKind(quint32 occurrence);
    QString placeOfText(quint32 occurrence) const;
    void countUnread(LevelState &state, Occurrences *odd);
    void placeUnread(LevelState &state);
    static void addInner(PathSet *paths, const LevelState &inner);
    static void addRepeats(const QString &path, const PathSet::Repeats &repeats,
                           UnreadParts *unread);
    bool hasFoundItems() const;
    quint32 firstInside(LevelState &inner, quint32 container) const;
    bool advanceInner(CellArena &arena);
    const MarkupTree &tree() const { return m_reader->tree(); }

    ExtractOptions m_options;
    ElementFilter m_filter;
    ItemCells m_items;
    std::vector<std::unique_ptr<LevelState>> m_levels;
    std::unique_ptr<OccurrenceReader> m_reader;
    std::vector<const uchar *> m_cells;
    std::vector<const uchar *> m_missing; // the missing cell of each column
    std::optional<BadValue> m_badValue;
    std::span<values::ColumnScan> m_scans; // empty: rows have cells
    // Null: all values are found in the trees.
    std::unique_ptr<MarkupTreeBuilder::LeafTaker> m_leafScan;
    std::unique_ptr<LeafKeeper> m_leaves; // for rows of one level
    qint64 m_rows = 0;                    // scanned
    qint64 m_occurrences = 0;             // of the first level that were looked for
    bool m_isJson = false;
    UnreadParts m_unread;
    /// Off where no row or cell depends on it: HTML, and cells that say whether an element exists.
    bool m_countsUnread;
    std::optional<MarkupResult> m_failure;
    /// Level of the innermost occurrence in the current row.
    size_t m_deepest = 0;
    bool m_hasRow = false;
    /// Occurrences of the first level, for ExtractOptions::skip.
    int m_skipped = 0;
    /// Of one value, until it is kept.
    BlockArena m_sharedCells;
    /// OccurrenceReader::rowGroup() of the last row.
    quint32 m_rowGroup = 0;
};

} // namespace corvanta::markup
