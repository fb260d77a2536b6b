// The rows of two levels, orders and lines, for {"orders":[{"id":1,"lines":[{"s":2},{"s":3}]}]}:
//
//     id | s
//     1  | 2     enterLevels(0): the cells of the order and of its first line
//     1  | 3     advanceInner(): the next line; the cells of the order stay
//
// An order without lines has one row, in which the cells of the line are missing.
#include "codecs/markup/levels/level_extractor.h"

#include "base/cell.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::markup {

LevelExtractor::LevelExtractor(const std::vector<Level> &levels, const ExtractOptions &options)
    : m_options(options)
    , m_filter(options)
    , m_items(options)
    , m_countsUnread(!options.text.html && !options.presence)
{
    const PathSyntax syntax{options.zeroBased, u'/'};
    int column = 0;
    for (const Level &level : levels) {
        auto state = std::make_unique<LevelState>(level, syntax);
        state->firstColumn = column;
        column += static_cast<int>(level.items.size()) + (options.outputSubTags ? 1 : 0);
        state->paths.countRepeats(m_countsUnread);
        state->paths.countUnread(options.countsUnread);
        for (const QString &path : level.leftOut) {
            if (!path.startsWith(u'/')) { // others: OccurrenceReader::leaveOut()
                state->paths.ignore(parsePath(path, syntax));
            }
        }
        if (!m_levels.empty()) {
            addInner(&m_levels.back()->paths, *state);
        }
        m_levels.push_back(std::move(state));
    }
    if (options.expandSpans) {
        addSpans(syntax);
    }
    m_reader = std::make_unique<OccurrenceReader>(*m_levels.front(), options, m_unread);
    setTypes(static_cast<size_t>(column));
    const bool hasJsonCells = options.types.find('J') != std::string::npos;
    if (canTakeLeaves() && m_levels.size() == 1 && !hasJsonCells) {
        m_leaves = std::make_unique<LeafKeeper>(leafColumns(), levels.front().items.size());
    }
    beginFile();
}

/// Add the container of the level `inner` to the paths of the level before. Its occurrences have
/// paths of their own.
void LevelExtractor::addInner(PathSet *paths, const LevelState &inner)
{
    paths->add(inner.initialPath);
    std::vector<PathStep> occurrence = inner.initialPath;
    occurrence.push_back({.name = inner.subtag, .anyName = inner.subtag.empty()});
    paths->ignore(occurrence);
}

QStringList LevelExtractor::columnNames() const
{
    QStringList names;
    for (size_t i = 0; i < m_levels.size(); ++i) {
        if (m_options.outputSubTags) {
            names << u"Level %1 Subtag"_s.arg(i + 1);
        }
        for (const LevelItem &item : m_levels[i]->level.items) {
            names << item.name;
        }
    }
    return names;
}

void LevelExtractor::beginFile()
{
    for (const auto &state : m_levels) {
        state->beginFile();
    }
    m_reader->beginFile();
    m_unread = {};
}

void LevelExtractor::beginDocument(MarkupTokenizer &tokenizer)
{
    m_reader->beginDocument(tokenizer);
    m_isJson = dynamic_cast<JSONTokenizer *>(&tokenizer) != nullptr;
    if (m_scans.empty()) {
        // An element of XML may have texts between its leaves, which are unread or not by them.
        m_reader->setLeafTaker(m_isJson ? m_leaves.get() : nullptr);
    }
    m_failure.reset();
    m_items.clearError();
    m_badValue.reset();
    m_hasRow = false;
    m_skipped = 0;
    if (m_levels.front()->spans) {
        m_levels.front()->spans->clear();
    }
}

QStringList LevelExtractor::missingPaths() const
{
    QStringList missing;
    for (const auto &state : m_levels) {
        // Levels inside one that never occurred cannot occur, so their paths are not named.
        if (!state->containerFound) {
            missing << state->level.initialPath;
            break;
        }
        for (size_t i = 0; state->occurred && i < state->level.items.size(); ++i) {
            if (!state->wasFound[i]) {
                missing << state->level.items[i].path;
            }
        }
        if (!state->occurred) {
            break;
        }
    }
    missing.removeDuplicates();
    return missing;
}

Result<bool, MarkupResult> LevelExtractor::next(CellArena &arena)
{
    do {
        m_hasRow = !m_failure && ((m_hasRow && advanceInner(arena)) || readFirstLevel(arena));
    } while (m_hasRow && !isLast(m_deepest) && m_levels.back()->level.isRequired);
    if (const auto cells = m_items.status(); !cells && !m_failure) {
        m_failure = m_reader->faultHere(cells.fault().code).code;
    }
    if (m_badValue && !m_failure) {
        m_failure = m_reader->faultHere(MarkupError::InvalidNumber).code;
    }
    if (m_failure) {
        m_hasRow = false;
        return Fault{*m_failure};
    }
    m_rows += m_hasRow ? 1 : 0;
    return m_hasRow;
}

bool LevelExtractor::resume()
{
    if (!m_failure || !m_reader->resume()) {
        return false;
    }
    m_failure.reset();
    return true;
}

/// True when the file has the item of a column.
bool LevelExtractor::hasFoundItems() const
{
    return std::any_of(m_levels.begin(), m_levels.end(), [](const auto &state) {
        return std::find(state->wasFound.begin(), state->wasFound.end(), true) !=
               state->wasFound.end();
    });
}

void LevelExtractor::addRepeats(const QString &path, const PathSet::Repeats &repeats,
                                UnreadParts *unread)
{
    const auto isSame = [&](const RepeatedPath &other) { return other.path == path; };
    if (repeats.count > 0 &&
        std::none_of(unread->repeatedPaths.begin(), unread->repeatedPaths.end(), isSame)) {
        unread->repeatedPaths.push_back({path, repeats.count, repeats.first});
    }
}

UnreadParts LevelExtractor::unread() const
{
    UnreadParts unread = m_unread;
    if (!hasFoundItems()) {
        // missingPaths() says more
        unread.bareValues.reset();
        unread.bareArrays.reset();
    }
    if (m_countsUnread) {
        addRepeats(m_levels.front()->level.initialPath, m_reader->repeats(), &unread);
    }
    for (size_t i = 0; i < m_levels.size(); ++i) {
        const LevelState &state = *m_levels[i];
        const std::vector<LevelItem> &items = state.level.items;
        unread.unreadItems += state.paths.unread();
        for (size_t path = 0; path < state.paths.size(); ++path) {
            const bool isItem = path < items.size();
            addRepeats(isItem ? items[path].path : m_levels[i + 1]->level.initialPath,
                       state.paths.repeatsOf(path), &unread);
        }
    }
    return unread;
}

/// Begin the rows of the next occurrence of the first level; false at the end and after a failure.
bool LevelExtractor::readFirstLevel(CellArena &arena)
{
    for (;;) {
        ++m_occurrences;
        if (m_leaves) {
            m_leaves->beginRecord();
        }
        const auto found = m_reader->next();
        if (!found) {
            m_failure = found.fault().code;
            return false;
        }
        if (!*found) {
            return false;
        }
        if (m_levels.front()->spans && !beginTableRow(**found)) {
            continue;
        }
        if (m_skipped >= m_options.skip) {
            enterLevels(0, **found, arena);
            return true;
        }
        skipFirst(**found);
    }
}

/// Fill the cells of `level` from `occurrence`, and those of the levels inside it from their first
/// occurrences.
void LevelExtractor::enterLevels(size_t level, quint32 occurrence, CellArena &lastArena)
{
    for (;; ++level) {
        LevelState &state = *m_levels[level];
        state.occurrence = occurrence;
        state.occurred = true;
        m_deepest = level;
        state.arena.reset();
        state.found = state.paths.resolve(tree(), occurrence);
        if (state.spans) {
            state.found = state.spans->resolve(tree(), occurrence, state.found);
        }
        fillRow(state, isLast(level) ? lastArena : state.arena);
        Occurrences *const odd = oddKind(occurrence);
        if (m_countsUnread && (odd != nullptr || state.paths.hasNewRepeats())) {
            countUnread(state, odd);
        }
        if (m_options.countsUnread) {
            placeUnread(state);
        }
        if (isLast(level)) {
            return;
        }
        LevelState &inner = *m_levels[level + 1];
        occurrence = firstInside(inner, state.found.back());
        if (occurrence == MarkupTree::kNone) {
            std::copy(m_missing.begin() + inner.firstColumn, m_missing.end(),
                      m_cells.begin() + inner.firstColumn);
            return;
        }
    }
}

/// Whether an item of a level outside of this one reads the occurrence.
bool LevelExtractor::isReadOutside(const LevelState &state) const
{
    for (size_t i = 0; m_levels[i].get() != &state; ++i) {
        const auto items = m_levels[i]->found.first(m_levels[i]->level.items.size());
        if (std::ranges::find(items, state.occurrence) != items.end()) {
            return true;
        }
    }
    return false;
}

/// Where an occurrence is counted that is not a record; null for a record.
inline Occurrences *LevelExtractor::oddKind(quint32 occurrence)
{
    const TreeItem &node = tree().item(occurrence);
    if (node.count(ItemKind::Child) == 0) {
        return node.count(ItemKind::Text) > 0 ? &m_unread.bareValues : nullptr;
    }
    // Only values of a JSON array have no name. The item after an occurrence is inside it.
    const TreeItem &first = tree().item(occurrence + 1);
    const bool isArray = first.kind == ItemKind::Child && tree().raw(first.text).isEmpty();
    return isArray ? &m_unread.bareArrays : nullptr;
}

/// The place of the first text in the occurrence that is in the file.
QString LevelExtractor::placeOfText(quint32 occurrence) const
{
    const std::span<const TreeItem> inside =
        tree().items().subspan(occurrence, tree().item(occurrence).next - occurrence);
    const auto text = std::ranges::find_if(inside, [](const TreeItem &item) {
        return item.kind == ItemKind::Text && !item.text.isExternal();
    });
    const auto index = text == inside.end() ? 0 : text - inside.begin();
    return m_reader->placeOf(occurrence + static_cast<quint32>(index));
}

/// Count what the occurrence has and the row does not show. Rarely called.
void LevelExtractor::countUnread(LevelState &state, Occurrences *odd)
{
    state.paths.placeRepeats([this](TextSpan name) { return m_reader->placeOf(name); });
    const bool hasItem =
        (m_leaves && m_leaves->hasAny()) ||
        std::ranges::any_of(state.found, [](quint32 item) { return item != MarkupTree::kNone; });
    if (odd != nullptr && !hasItem && !isReadOutside(state)) {
        odd->add([&] { return placeOfText(state.occurrence); });
    }
}

/// Store where the first part is that no item reads.
inline void LevelExtractor::placeUnread(LevelState &state)
{
    const std::optional<quint32> first = state.paths.takeFirstUnread();
    if (!first || !m_unread.firstUnreadPlace.isEmpty()) {
        return;
    }
    QStringList names;
    for (quint32 at = *first; at != state.occurrence; at = tree().item(at).parent) {
        const bool isAttribute = tree().item(at).kind == ItemKind::Attribute;
        const std::u16string name = decoded(tree().raw(at));
        names.prepend((isAttribute ? u"@"_s : QString()) + QStringView(name).toString());
    }
    // "." is the text of the occurrence itself.
    m_unread.firstUnreadPath = names.isEmpty() ? u"."_s : names.join(u'/');
    m_unread.firstUnreadPlace = m_reader->placeOf(*first);
}

inline void LevelExtractor::fillRow(LevelState &state, CellArena &arena)
{
    if (!m_scans.empty()) {
        scanItems(state, arena);
    } else if (m_options.types.empty()) {
        fillCells(state, arena);
        fillNumber(state, arena);
    } else {
        fillTypedCells(state, arena);
        fillNumber(state, arena);
    }
    if (state.spans) {
        keepShared(state);
        repeatCells(state, arena);
    }
}

inline void LevelExtractor::fillCells(LevelState &state, CellArena &arena)
{
    const std::span<const quint32> found = state.found;
    const uchar **cell = m_cells.data() + state.firstColumn;
    if (m_options.outputSubTags) {
        *cell++ = textCell(arena, tree().raw(state.occurrence));
    }
    for (size_t i = 0; i < state.level.items.size(); ++i) {
        const LevelItem &item = state.level.items[i];
        const bool isInTree = found[i] != MarkupTree::kNone;
        const MarkupTokenizer::Leaf *const leaf = leafOf(state, i);
        *cell++ = leaf != nullptr ? m_items.textCellOf(tree(), leaf->text, arena)
                  : isInTree      ? m_items.cellOf(tree(), item, found[i], arena)
                                  : m_items.absentCell(item, arena);
        if ((isInTree || leaf != nullptr) && !state.wasFound[i]) {
            state.wasFound[i] = true;
        }
    }
}

/// The cell of the item that is the number of the occurrence, if there is one.
inline void LevelExtractor::fillNumber(LevelState &state, CellArena &arena)
{
    ++state.number;
    if (state.numberItem >= 0) {
        const auto column = static_cast<size_t>(
            state.firstColumn + (m_options.outputSubTags ? 1 : 0) + state.numberItem);
        m_cells[column] = isNumberColumn(column)
                              ? numberCell(std::to_string(state.number), column, arena)
                              : textCell(arena, QString::number(state.number).toStdU16String());
    }
}

/// The first occurrence of the level `inner` inside `container`, which may be kNone.
quint32 LevelExtractor::firstInside(LevelState &inner, quint32 container) const
{
    if (container == MarkupTree::kNone) {
        return MarkupTree::kNone;
    }
    inner.containerFound = true;
    if (inner.spans) {
        inner.spans->clear();
    }
    return m_filter.firstOccurrence(tree(), inner, container + 1, container);
}

/// Continue with the next occurrence of an inner level; false when the record has no more.
bool LevelExtractor::advanceInner(CellArena &arena)
{
    for (size_t level = m_deepest; level > 0; --level) {
        const LevelState &state = *m_levels[level];
        const TreeItem &last = tree().item(state.occurrence);
        const quint32 occurrence = m_filter.firstOccurrence(tree(), state, last.next, last.parent);
        if (occurrence != MarkupTree::kNone) {
            enterLevels(level, occurrence, arena);
            return true;
        }
    }
    return false;
}

} // namespace corvanta::markup
