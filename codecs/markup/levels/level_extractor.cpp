#include "codecs/markup/levels/level_extractor.h"

#include "base/cell.h"
#include "base/limits.h"

#include <algorithm>
#include <map>

using namespace Qt::StringLiterals;

namespace corvanta::markup {

namespace {

/// Members of a top-level object that are looked at before it is taken for a container.
constexpr qsizetype kMembersToJudge = 64;

} // namespace

LevelExtractor::LevelExtractor(const std::vector<Level> &levels, const ExtractOptions &options)
    : m_options(options)
{
    const PathSyntax syntax{options.zeroBased, u'/'};
    int column = 0;
    for (const Level &level : levels) {
        auto state = std::make_unique<LevelState>();
        state->level = level;
        state->initialPath = parsePath(level.initialPath, syntax);
        state->subtag = nameInStep(level.subtagName);
        for (const LevelItem &item : level.items) {
            state->paths.add(parsePath(item.path, syntax));
        }
        state->firstColumn = column;
        column += static_cast<int>(level.items.size()) + (options.outputSubTags ? 1 : 0);
        if (!m_levels.empty()) {
            m_levels.back()->paths.add(state->initialPath);
        }
        m_levels.push_back(std::move(state));
    }
    m_rootPath.add(m_levels.front()->initialPath);
    m_passed.resize(m_levels.front()->initialPath.size());
    m_cells.resize(static_cast<size_t>(column), cell::missingTextCell());
    beginFile();
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
        state->wasFound.assign(state->paths.size(), false);
        state->occurred = false;
        state->containerFound = state->initialPath.empty();
    }
    m_documents = Documents::Undecided;
}

void LevelExtractor::beginDocument(MarkupTokenizer &tokenizer)
{
    m_tokenizer = &tokenizer;
    m_json = dynamic_cast<JSONTokenizer *>(&tokenizer);
    m_tokenizer->setBalanced(true);
    m_tokenizer->setDocumentMarks(true);
    m_builder.setReturnSingleChild(!m_options.keepRoot);
    m_result = {};
    m_rowIsOut = m_ended = m_sawContent = false;
    m_skipped = 0;
    m_matched = 0;
    m_nextInTree = MarkupTree::kNone;
    std::fill(m_passed.begin(), m_passed.end(), 0);
}

QStringList LevelExtractor::missingPaths() const
{
    QStringList missing;
    for (const auto &state : m_levels) {
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

LevelExtractor::Outcome LevelExtractor::next(CellArena &arena)
{
    if (m_rowIsOut && advanceInner(arena)) {
        return Outcome::Row;
    }
    m_rowIsOut = false;
    quint32 occurrence = 0;
    while (!m_ended && m_skipped < m_options.skip && nextOccurrence(&occurrence)) {
        ++m_skipped;
    }
    if (!m_ended && nextOccurrence(&occurrence)) {
        enter(0, occurrence, arena);
        m_rowIsOut = m_result.error == MarkupError::None;
    }
    if (m_rowIsOut) {
        return Outcome::Row;
    }
    m_ended = true;
    return m_result.error == MarkupError::None ? Outcome::End : Outcome::Fault;
}

// ---- Levels below the first: in the tree of the record.

bool LevelExtractor::isOccurrence(const LevelState &state, const RawText &name) const
{
    return state.subtag.empty() || nameMatches(name, state.subtag);
}

/// The first occurrence at or behind the child `from`.
quint32 LevelExtractor::matching(const LevelState &state, quint32 from, quint32 container) const
{
    quint32 child = m_tree->next(from, container, ItemKind::Child);
    while (child != MarkupTree::kNone &&
           (!isOccurrence(state, m_tree->raw(child)) || isIgnored(child))) {
        child = m_tree->sibling(child);
    }
    return child;
}

/// An element without text, sub-elements and attributes, where such elements do not count.
bool LevelExtractor::isIgnored(quint32 element) const
{
    const TreeItem &item = m_tree->item(element);
    const auto count = [&](ItemKind kind) { return item.counts[static_cast<size_t>(kind)]; };
    if (!m_options.ignoreEmpty || item.kind != ItemKind::Child || count(ItemKind::Child) > 0 ||
        count(ItemKind::Text) > 0 || count(ItemKind::Attribute) > 0) {
        return false;
    }
    quint32 clear = m_tree->first(element, ItemKind::Clear);
    while (clear != MarkupTree::kNone && !isTextPiece(m_tree->item(clear), m_options.text)) {
        clear = m_tree->sibling(clear);
    }
    return clear == MarkupTree::kNone;
}

/// Fill the cells of `level` from `occurrence`, and those of the levels inside it from their first
/// ones.
void LevelExtractor::enter(size_t level, quint32 occurrence, CellArena &lastArena)
{
    for (;; ++level) {
        LevelState &state = *m_levels[level];
        state.occurrence = occurrence;
        state.occurred = true;
        m_deepest = level;
        state.arena.reset();
        CellArena &arena = isLast(level) ? lastArena : state.arena;
        const std::span<const quint32> found = state.paths.resolve(*m_tree, occurrence);
        const uchar **cell = m_cells.data() + state.firstColumn;
        if (m_options.outputSubTags) {
            *cell++ = textCell(arena, m_tree->raw(occurrence));
        }
        for (size_t i = 0; i < state.level.items.size(); ++i) {
            const bool isFound = found[i] != MarkupTree::kNone;
            *cell++ = isFound ? itemCell(state.level.items[i], found[i], arena)
                              : absentCell(state.level.items[i], arena);
            if (isFound && !state.wasFound[i]) {
                state.wasFound[i] = true;
            }
        }
        if (isLast(level)) {
            return;
        }
        const quint32 container = found.back();
        LevelState &inner = *m_levels[level + 1];
        const bool isContained = container != MarkupTree::kNone;
        inner.containerFound = inner.containerFound || isContained;
        occurrence = isContained ? matching(inner, container + 1, container) : MarkupTree::kNone;
        if (occurrence == MarkupTree::kNone) {
            std::fill(m_cells.begin() + inner.firstColumn, m_cells.end(), cell::missingTextCell());
            return;
        }
    }
}

/// The next row of the record at hand; false when it has none.
bool LevelExtractor::advanceInner(CellArena &arena)
{
    for (size_t level = m_deepest; level > 0; --level) {
        const LevelState &state = *m_levels[level];
        const TreeItem &last = m_tree->item(state.occurrence);
        const quint32 occurrence = matching(state, last.next, last.parent);
        if (occurrence != MarkupTree::kNone) {
            enter(level, occurrence, arena);
            return m_result.error == MarkupError::None;
        }
    }
    return false;
}

// ---- The first level: in the stream.

bool LevelExtractor::stop(MarkupError error)
{
    if (m_result.error == MarkupError::None) {
        m_result = {error, m_tokenizer->line(), m_tokenizer->column()};
    }
    m_ended = true;
    return false;
}

bool LevelExtractor::nextOccurrence(quint32 *occurrence)
{
    if (nextInTree(occurrence)) {
        return true;
    }
    m_tokenizer->unpin();
    while (!m_ended) {
        if (m_options.keepRoot ? stream(occurrence) : wholeValue(occurrence)) {
            return true;
        }
    }
    return false;
}

/// Occurrences that lie ready in a tree that holds more than one.
bool LevelExtractor::nextInTree(quint32 *occurrence)
{
    if (m_nextInTree == MarkupTree::kNone) {
        return false;
    }
    const LevelState &first = *m_levels.front();
    *occurrence = matching(first, m_nextInTree, m_treeContainer);
    m_nextInTree =
        *occurrence == MarkupTree::kNone ? MarkupTree::kNone : m_tree->item(*occurrence).next;
    return *occurrence != MarkupTree::kNone;
}

/// Pull one token; true when it gave an occurrence.
bool LevelExtractor::stream(quint32 *occurrence)
{
    switch (m_tokenizer->nextToken()) {
    case Token::DocumentStart:
        m_sawContent = true;
        std::fill(m_passed.begin(), m_passed.end(), 0);
        return startDocument(occurrence);
    case Token::Start:
        m_sawContent = true;
        return streamStart(occurrence);
    case Token::End:
        --m_matched;
        return false;
    case Token::EndOfData:
        m_ended = true;
        return m_sawContent ? false : stop(MarkupError::NoTagFound);
    case Token::Error:
        return stop(m_tokenizer->errorCode());
    default:
        return false;
    }
}

/// An element begins inside the part of the path that is open.
bool LevelExtractor::streamStart(quint32 *occurrence)
{
    LevelState &first = *m_levels.front();
    const RawText name = m_tokenizer->rawText();
    if (m_matched == first.initialPath.size()) {
        return isOccurrence(first, name) ? buildElement(occurrence) : skipElement();
    }
    const PathStep &step = first.initialPath[m_matched];
    // An XML file may hold several documents one after the other; a page is one, whatever it holds.
    const bool isDocument = m_matched == 0 && m_json == nullptr && !m_options.text.html;
    if (isDocument && step.index == 0) {
        m_passed[0] = 0;
    }
    const bool isStep = step.anyName || nameMatches(name, step.name);
    if (!isStep || m_passed[m_matched]++ != step.index) {
        return skipElement();
    }
    if (++m_matched == first.initialPath.size()) {
        first.containerFound = true;
    } else {
        m_passed[m_matched] = 0;
    }
    return false;
}

/// Read to the end of the element that has just begun.
bool LevelExtractor::skipElement()
{
    const qint64 outside = m_tokenizer->depth() - 1;
    while (m_tokenizer->depth() > outside) {
        if (m_tokenizer->nextToken() == Token::Error) {
            return stop(m_tokenizer->errorCode());
        }
    }
    return false;
}

/// Add tokens to the tree until its depth is back at 0; the first was added.
bool LevelExtractor::addElement()
{
    while (m_builder.depth() > 0) {
        if (!m_builder.addLeaves()) {
            return stop(MarkupError::TreeTooLarge);
        }
        const Token token = m_tokenizer->nextToken();
        if (token == Token::Error) {
            return stop(m_tokenizer->errorCode());
        }
        if (!m_builder.add(token)) {
            return stop(MarkupError::TreeTooLarge);
        }
    }
    return true;
}

bool LevelExtractor::buildElement(quint32 *occurrence)
{
    m_builder.begin(*m_tokenizer);
    m_builder.add(Token::Start);
    if (!addElement()) {
        return false;
    }
    m_tree = &m_builder.tree();
    *occurrence = 1;
    if (isIgnored(1)) {
        m_tokenizer->unpin();
        return false;
    }
    return true;
}

bool LevelExtractor::startDocument(quint32 *occurrence)
{
    const LevelState &first = *m_levels.front();
    const auto kind = m_json->documentKind();
    if (!first.initialPath.empty() || !first.subtag.empty() ||
        kind == JSONTokenizer::DocumentKind::Array) {
        return false;
    }
    if (kind == JSONTokenizer::DocumentKind::Scalar || m_documents == Documents::Records) {
        m_builder.begin(*m_tokenizer);
        return buildDocument(occurrence);
    }
    if (m_documents == Documents::Containers) {
        return false;
    }
    m_builder.begin(*m_tokenizer);
    return decideDocument(occurrence);
}

/// Add the rest of the document to the tree and take its root for the occurrence.
bool LevelExtractor::buildDocument(quint32 *occurrence)
{
    if (!addToEnd()) {
        return false;
    }
    m_tree = &m_builder.tree();
    *occurrence = 0;
    return true;
}

bool LevelExtractor::addToEnd()
{
    for (;;) {
        if (!m_builder.addLeaves()) {
            return stop(MarkupError::TreeTooLarge);
        }
        const Token token = m_tokenizer->nextToken();
        if (token == Token::DocumentEnd) {
            return true;
        }
        if (token == Token::Error) {
            return stop(m_tokenizer->errorCode());
        }
        if (!m_builder.add(token)) {
            return stop(MarkupError::TreeTooLarge);
        }
    }
}

/// An object at the top, and no path that leads into it: it is a container, whose members are the
/// occurrences, unless a member is what an item asks for: then it is itself a record (JSON Lines).
bool LevelExtractor::decideDocument(quint32 *occurrence)
{
    for (qsizetype members = 0; members < kMembersToJudge; ++members) {
        const Token token = m_tokenizer->nextToken();
        if (token == Token::Error) {
            return stop(m_tokenizer->errorCode());
        }
        if (token == Token::DocumentEnd) {
            break;
        }
        m_builder.add(token);
        if (!addElement()) {
            return false;
        }
        m_documents = judgeMember();
        if (m_documents == Documents::Records) {
            return buildDocument(occurrence);
        }
        if (m_documents == Documents::Containers) {
            break;
        }
    }
    m_tree = &m_builder.tree();
    m_treeContainer = 0;
    m_nextInTree = 1;
    return nextInTree(occurrence);
}

/// Look at the member that was added last.
LevelExtractor::Documents LevelExtractor::judgeMember()
{
    m_tree = &m_builder.tree();
    LevelState &first = *m_levels.front();
    const std::span<const TreeItem> items = m_tree->items();
    auto member = static_cast<quint32>(items.size() - 1);
    while (items[member].parent != 0) {
        member = items[member].parent;
    }
    if (first.paths.isFirstStep(m_tree->raw(member))) {
        return Documents::Records;
    }
    const std::span<const quint32> found = first.paths.resolve(*m_tree, member);
    const bool reaches = std::any_of(found.begin(), found.end(), [&](quint32 item) {
        return item != MarkupTree::kNone && item != member;
    });
    return reaches ? Documents::Containers : Documents::Undecided;
}

/// Older graphs: the path begins at the only element of the document, which is known at its end.
bool LevelExtractor::wholeValue(quint32 *occurrence)
{
    MarkupResult result;
    const MarkupNode root = m_builder.parseNext(*m_tokenizer, result, false);
    m_sawContent = m_sawContent || m_tokenizer->token() == Token::DocumentEnd;
    if (m_tokenizer->token() == Token::EndOfData) {
        m_ended = true;
        return m_sawContent ? false : stop(MarkupError::NoTagFound);
    }
    if (result.error != MarkupError::None && result.error != MarkupError::NoTagFound) {
        m_result = result;
        m_ended = true;
        return false;
    }
    if (root.isEmpty()) {
        return false;
    }
    m_tree = root.tree();
    m_treeContainer = m_rootPath.resolve(*m_tree, root.index()).front();
    if (m_treeContainer == MarkupTree::kNone) {
        return false;
    }
    m_levels.front()->containerFound = true;
    m_nextInTree = m_treeContainer + 1;
    return nextInTree(occurrence);
}

// ---- Cells.

const uchar *LevelExtractor::itemCell(const LevelItem &item, quint32 found, CellArena &arena)
{
    const TreeItem &node = m_tree->item(found);
    if (m_options.presence && !item.tagName) {
        return isIgnored(found) ? absentCell(item, arena) : textCell(arena, u"1");
    }
    if (node.kind == ItemKind::Attribute) {
        return rawCell(m_tree->value(node), arena);
    }
    return item.tagName ? tagNamesOf(found, arena) : textOf(found, arena);
}

const uchar *LevelExtractor::absentCell(const LevelItem &item, CellArena &arena) const
{
    return m_options.presence && !item.tagName ? textCell(arena, u"0") : cell::missingTextCell();
}

const uchar *LevelExtractor::rawCell(const RawText &text, CellArena &arena)
{
    if (text.size > limits::kTextCellUnits) {
        stop(MarkupError::NoMemory);
        return cell::missingTextCell();
    }
    return textCell(arena, text);
}

/// The text of an element, or what stands for it; missing when there is neither.
const uchar *LevelExtractor::textOf(quint32 element, CellArena &arena)
{
    const TreeItem &node = m_tree->item(element);
    const auto count = [&](ItemKind kind) { return node.counts[static_cast<size_t>(kind)]; };
    const quint32 texts = count(ItemKind::Text);
    const quint32 clears = m_options.text.clearIsText ? count(ItemKind::Clear) : 0;
    if (texts == 1 && clears == 0 && !m_options.allText) {
        return rawCell(m_tree->raw(m_tree->first(element, ItemKind::Text)), arena);
    }
    const auto gather = m_options.allText ? foldText : joinText;
    if ((m_options.allText || texts + clears > 0) &&
        gather(*m_tree, element, m_options.text, &m_joined)) {
        return joinedCell(arena);
    }
    return m_options.namesForText && count(ItemKind::Child) > 0 ? tagNamesOf(element, arena)
                                                                : cell::missingTextCell();
}

const uchar *LevelExtractor::joinedCell(CellArena &arena)
{
    if (static_cast<qint64>(m_joined.size()) > limits::kTextCellUnits) {
        stop(MarkupError::TreeTooLarge);
        return cell::missingTextCell();
    }
    return textCell(arena, m_joined);
}

const uchar *LevelExtractor::tagNamesOf(quint32 element, CellArena &arena)
{
    std::vector<std::pair<std::u16string, qint64>> runs;
    std::map<std::u16string, qint64> totals;
    quint32 child = m_tree->first(element, ItemKind::Child);
    for (; child != MarkupTree::kNone; child = m_tree->sibling(child)) {
        if (isIgnored(child)) {
            continue;
        }
        std::u16string name = decoded(m_tree->raw(child));
        if (m_options.tagNames == TagNames::Summary) {
            ++totals[std::move(name)];
        } else if (!runs.empty() && runs.back().first == name) {
            ++runs.back().second;
        } else {
            runs.emplace_back(std::move(name), 1);
        }
    }
    runs.insert(runs.end(), totals.begin(), totals.end());
    m_joined.clear();
    for (const auto &[name, n] : runs) {
        const QString count = n > 1 ? u'[' + QString::number(n) + u']' : QString();
        m_joined += name + count.toStdU16String() + u' ';
    }
    return textCell(arena, m_joined);
}

} // namespace corvanta::markup
