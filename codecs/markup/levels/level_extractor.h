// codecs/markup/levels/level_extractor.h
// Turns a document into rows of text cells, level by level.
//
// The extractor goes down the token stream along the first level's path and builds the tree of one
// occurrence at a time, so that memory is that of one record whatever the document's size.
#pragma once
#include "codecs/markup/levels/cell_arena.h"
#include "codecs/markup/levels/level.h"
#include "codecs/markup/tokens/json_tokenizer.h"
#include "codecs/markup/tree/element_text.h"
#include "codecs/markup/tree/path_set.h"
#include "codecs/markup/tree/tree.h"

#include <QStringList>

#include <span>
#include <vector>

namespace corvanta::markup {

/// How the names of an element's children are written into a cell.
enum class TagNames : quint8 {
    Runs,    ///< in document order, each run of equal names once: "a b[3] c "
    Summary, ///< sorted, each name once with its total
};

struct ExtractOptions
{
    bool zeroBased = true;      ///< base of the indexes in paths
    bool outputSubTags = false; ///< a column per level for the occurrence's name
    bool keepRoot =
        true; ///< paths begin at the document; off: at its only element, if it has only one
    TagNames tagNames = TagNames::Runs;
    TextRule text;             ///< what is text of an element
    bool allText = false;      ///< with the text of its sub-elements, blanks folded
    bool namesForText = false; ///< an element without text has the names of its children for a text
    bool presence = false;     ///< instead of texts 1 for what is there and 0 for what is not
    bool ignoreEmpty = false; ///< elements without text, sub-elements and attributes are not there,
                              ///< but count in indexes
    int skip = 0; ///< occurrences of the first level that are passed over at a document's start
};

/// Threads: one at a time.
class LevelExtractor
{
public:
    enum class Outcome : quint8 { Row, End, Fault };

    /// At least one level.
    LevelExtractor(const std::vector<Level> &levels, const ExtractOptions &options);

    /// Names of the columns: for each level its subtag column, if wanted, and its items.
    QStringList columnNames() const;
    int columnCount() const { return static_cast<int>(m_cells.size()); }

    /// Bytes of the first block of a record's tree.
    void setBlockSize(qint64 bytes) { m_builder.setBlockSize(bytes); }

    /// Begin another file: nothing was found in it yet.
    void beginFile();
    /// Begin a document of the file. The tokenizer must be new (or restarted) and outlive the
    /// document; it is set to what the extractor needs.
    void beginDocument(MarkupTokenizer &tokenizer);

    /// Go on to the next row. Cells of the last level are built in `arena`. After Fault see
    /// result().
    Outcome next(CellArena &arena);

    /// The row's cells, valid until the next call; the shared missing cell where there is no value.
    std::span<const uchar *const> cells() const { return m_cells; }

    const MarkupResult &result() const { return m_result; }
    /// Paths, as they were given, that the file never had. Those of a level that never occurred are
    /// not among them.
    QStringList missingPaths() const;

private:
    struct LevelState
    {
        Level level;
        std::vector<PathStep> initialPath;
        std::u16string subtag; ///< lower case
        PathSet paths;         ///< of the items, then the next level's initial path
        int firstColumn = 0;
        std::vector<bool> wasFound; ///< by path
        bool occurred = false;
        bool containerFound = false;
        BlockArena arena;
        quint32 occurrence = 0; ///< the one whose row is out
    };
    /// What an object at the top of the stream turned out to be.
    enum class Documents : quint8 { Undecided, Records, Containers };

    bool isLast(size_t level) const { return level + 1 == m_levels.size(); }
    quint32 matching(const LevelState &state, quint32 from, quint32 container) const;
    bool isOccurrence(const LevelState &state, const RawText &name) const;
    bool isIgnored(quint32 element) const;
    void enter(size_t level, quint32 occurrence, CellArena &lastArena);
    bool advanceInner(CellArena &arena);
    Outcome fault(MarkupError error);

    // First level.
    bool nextOccurrence(quint32 *occurrence);
    bool nextInTree(quint32 *occurrence);
    bool stream(quint32 *occurrence);
    bool streamStart(quint32 *occurrence);
    bool startDocument(quint32 *occurrence);
    bool decideDocument(quint32 *occurrence);
    Documents judgeMember();
    bool buildDocument(quint32 *occurrence);
    bool buildElement(quint32 *occurrence);
    bool addElement();
    bool addToEnd();
    bool skipElement();
    bool wholeValue(quint32 *occurrence);
    bool stop(MarkupError error);

    // Cells.
    const uchar *itemCell(const LevelItem &item, quint32 found, CellArena &arena);
    const uchar *rawCell(const RawText &text, CellArena &arena);
    const uchar *textOf(quint32 element, CellArena &arena);
    const uchar *joinedCell(CellArena &arena);
    const uchar *absentCell(const LevelItem &item, CellArena &arena) const;
    const uchar *tagNamesOf(quint32 element, CellArena &arena);

    ExtractOptions m_options;
    std::vector<std::unique_ptr<LevelState>> m_levels;
    std::vector<const uchar *> m_cells;
    MarkupTreeBuilder m_builder;
    MarkupTokenizer *m_tokenizer = nullptr;
    JSONTokenizer *m_json = nullptr;
    const MarkupTree *m_tree = nullptr;
    MarkupResult m_result;
    size_t m_deepest = 0; ///< level of the innermost occurrence of the row that is out
    bool m_rowIsOut = false;
    bool m_ended = false;
    int m_skipped = 0;
    bool m_sawContent = false;
    Documents m_documents = Documents::Undecided;
    std::vector<quint32> m_passed; ///< per step of the first path: matching elements gone by
    size_t m_matched = 0;          ///< steps of the first path that are open
    quint32 m_nextInTree = MarkupTree::kNone;
    quint32 m_treeContainer = 0;
    PathSet m_rootPath; ///< the first level's initial path, for trees of whole values
    std::u16string m_joined;
};

} // namespace corvanta::markup
