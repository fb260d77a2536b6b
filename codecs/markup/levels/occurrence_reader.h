// Finds the occurrences of the first level in the token stream of a document.
//
// The reader follows the level's initial path down the stream and builds the tree of one occurrence
// at a time, so that it needs the memory of one record, whatever the size of the document.
#pragma once
#include "codecs/markup/levels/element_filter.h"
#include "codecs/markup/levels/path_follower.h"
#include "codecs/markup/levels/record_builder.h"
#include "codecs/markup/levels/unread_parts.h"
#include "codecs/markup/tokens/json_tokenizer.h"

#include <optional>

namespace corvanta::markup {

/// Threads: one at a time.
class OccurrenceReader
{
public:
    /// The index of an occurrence in tree(); std::nullopt if there is none.
    using Found = Result<std::optional<quint32>, MarkupResult>;

    /// `first` and `unread` must outlive the reader, which sets the containerFound of `first` and
    /// counts stray texts in `unread`.
    OccurrenceReader(LevelState &first, const ExtractOptions &options, UnreadParts &unread);

    /// Set the initial size of the memory of a tree, in bytes.
    void setBlockSize(qint64 bytes) { m_record.builder().setBlockSize(bytes); }
    /// See RecordBuilder.
    void setLeafTaker(MarkupTreeBuilder::LeafTaker *taker) { m_record.setLeafTaker(taker); }
    /// Begin another file: its documents may have another form. Call before the beginDocument() of
    /// its first document.
    void beginFile();
    /// See LevelExtractor.
    bool readsRecords() const { return m_documents == Documents::Records; }
    void expectRecords() { m_documents = Documents::Records; }
    void skipLines(qint64 lines) { m_skippedLines += lines; }
    /// A position of the document in words.
    QString placeText(const LineCounter &position) const
    {
        return m_placeText(m_skippedLines + position.line(), position.column());
    }
    /// How places of `unread` are written; placeText() by default.
    void setPlaceText(PlaceText placeText) { m_placeText = std::move(placeText); }
    /// Begin a document of the file. `tokenizer` must be new or restarted, and outlive the
    /// document.
    void beginDocument(MarkupTokenizer &tokenizer);

    /// Find the next occurrence; std::nullopt at the end of the document, and after it. Errors:
    /// those of the tokenizer, NoTagFound, TreeTooLarge.
    Found next();

    /// After an error of next(): continue at the next line, if the data is JSON Lines. Returns
    /// false when it cannot.
    bool resume();
    /// The end of the document: look for data after a NUL.
    void endDocument();

    /// Further matches of the initial path, which are not read.
    PathSet::Repeats repeats() const;
    /// The place of an item of tree(), and of its name or text.
    QString placeOf(quint32 item) const { return placeOf(m_tree->item(item).text); }
    QString placeOf(TextSpan text) const;

    /// The last occurrence is a row of an HTML table: changes when another group of rows (thead,
    /// tbody, tfoot) has begun.
    quint32 rowGroup() const { return m_rowGroup; }

    /// The tree of the last occurrence. Valid until the next call; only after an occurrence was
    /// found.
    const MarkupTree &tree() const { return *m_tree; }

    /// The fault `error` at the position of the tokenizer.
    Fault<MarkupResult> faultHere(MarkupError error) const { return m_record.faultHere(error); }

private:
    /// What a top-level object is, when no path leads into it. Decided once per file.
    enum class Documents : quint8 {
        Undecided,
        /// It is an occurrence, one line of JSON Lines.
        Records,
        /// Its members are the occurrences.
        Containers,
    };

    // Each of these returns an occurrence, or std::nullopt when more tokens are needed.
    std::optional<quint32> nextInTree();
    Found readToken();
    void addAfterNul(qint64 bytes, const LineCounter &position);
    void addOutside(const QString &what);
    void leaveOut(const QString &path, const PathSyntax &syntax);
    bool isLeftOut(const RawText &name) const;
    Found startElement();
    void leaveElement();
    Found startValue();
    Found endOfData();
    Found buildElement();
    Found buildValue();
    Found classifyObject();
    Documents classifyValue();
    bool hasItemInside(quint32 member);
    Found useValue(Documents documents);
    Found readWholeValue();

    LevelState &m_first;
    ElementFilter m_filter;
    bool m_keepRoot;
    bool m_isHtml;
    /// Elements in the container that group rows are read like the container itself.
    bool m_readsRowGroups;
    bool m_canReadAhead;
    bool m_countsUnread;
    UnreadParts &m_unread;
    PlaceText m_placeText = markup::placeText;
    PathFollower m_path;
    /// A part between the records that is left out on purpose.
    struct LeftOutside
    {
        size_t openSteps = 0; ///< of the initial path, where the part begins
        std::u16string name;  ///< lower case
    };
    std::vector<LeftOutside> m_leftOut;
    /// All parts are left out that begin where fewer steps are open.
    size_t m_leftOutBelow = 0;
    /// The initial path, for trees of whole values.
    PathSet m_rootPath;
    RecordBuilder m_record;
    MarkupTokenizer *m_tokenizer = nullptr;
    JSONTokenizer *m_json = nullptr;
    const MarkupTree *m_tree = nullptr;
    bool m_ended = false;
    bool m_sawContent = false;
    /// The current top-level value is built as a whole, and no row of it was returned.
    bool m_isBuildingValue = false;
    Documents m_documents = Documents::Undecided;
    /// Of the file, before the document.
    qint64 m_skippedLines = 0;
    /// Where the search in a tree continues.
    quint32 m_nextInTree = MarkupTree::kNone;
    /// Number of open elements that group rows; at most 1 in valid pages.
    qint64 m_openRowGroups = 0;
    /// Number of elements that group rows, and of their ends.
    quint32 m_rowGroupTags = 0;
    quint32 m_rowGroup = 0;
    /// Element that holds the occurrences of that tree.
    quint32 m_treeContainer = 0;
};

} // namespace corvanta::markup
