// What the extractor does with values other than putting them into cells of texts: scans that find
// their kinds, and cells of numbers.
#include "base/bytes.h"
#include "base/cell.h"
#include "base/text/number_value.h"
#include "codecs/markup/levels/level_extractor.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta::markup {

namespace {

/// The text of a cell, in UTF-8.
QByteArray utf8Of(const uchar *textCell)
{
    return QStringView(cell::readText(textCell).view()).toUtf8();
}

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

} // namespace

// ---- The values without cells.

/// Scans the leaves of the first level's occurrences before they get into a tree. All others are
/// found in the tree.
class LevelExtractor::LeafScan final : public MarkupTreeBuilder::LeafTaker
{
public:
    explicit LeafScan(LevelExtractor &extractor)
        : m_extractor(extractor)
        , m_columns(extractor.leafColumns())
        , m_last(extractor.m_levels.front()->level.items.size(), 0)
        , m_scans(extractor.m_scans.subspan(extractor.m_options.outputSubTags ? 1 : 0))
    {
    }

    bool take(const MarkupTokenizer &tokenizer, const MarkupTokenizer::Leaf &leaf) override
    {
        const size_t item = m_columns.find(tokenizer.resolve(leaf.name));
        if (item != LeafColumns::kNone) {
            scan(tokenizer, leaf, item);
        }
        return item != LeafColumns::kNone;
    }

private:
    void scan(const MarkupTokenizer &tokenizer, const MarkupTokenizer::Leaf &leaf, size_t item)
    {
        values::ColumnScan &scan = m_scans[item];
        const bool isFirst =
            std::exchange(m_last[item], m_extractor.m_occurrences) != m_extractor.m_occurrences;
        if (!isFirst || !leaf.hasText || scan.isDecided()) {
            return;
        }
        const RawText text = tokenizer.resolve(leaf.text);
        const bool isQuoted = text.data[-1] == '"'; // the name comes before: there is such a byte
        const auto place = [&] {
            return m_extractor.placeOfRow(
                m_extractor.m_reader->placeText(tokenizer.positionOf(leaf.name)));
        };
        m_extractor.scanText(text.view(), isQuoted, place, &scan);
    }

    LevelExtractor &m_extractor;
    LeafColumns m_columns;
    std::vector<qint64> m_last;            // by item: the occurrence in which it had a value
    std::span<values::ColumnScan> m_scans; // by item of the first level
};

/// Whether the values of leaves depend on nothing but the leaves.
bool LevelExtractor::canTakeLeaves() const
{
    return m_options.keepRoot && !m_options.presence && !m_options.allText &&
           !m_options.expandSpans && !m_options.ignoreEmpty && m_options.skip == 0;
}

LeafColumns LevelExtractor::leafColumns() const
{
    const bool isOne = m_levels.size() == 1;
    return {*m_levels.front(), PathSyntax{m_options.zeroBased, u'/'},
            isOne ? nullptr : m_levels[1].get()};
}

/// The leaf, or null, if the same item is in the tree before it. The other one is a repeat.
const MarkupTokenizer::Leaf *LevelExtractor::firstOf(LevelState &state, size_t item,
                                                     const MarkupTokenizer::Leaf &leaf)
{
    const TextSpan inTree = tree().item(state.found[item]).text;
    const bool isFirst = leaf.name.offset() < inTree.offset();
    state.paths.addRepeat(item, isFirst ? inTree : leaf.name);
    return isFirst ? &leaf : nullptr;
}

void LevelExtractor::scanValues(std::span<values::ColumnScan> scans)
{
    m_scans = scans;
    m_leaves.reset();
    if (canTakeLeaves()) {
        m_leafScan = std::make_unique<LeafScan>(*this);
        m_reader->setLeafTaker(m_leafScan.get());
    }
}

/// For messages: an item of the row that is scanned now.
QString LevelExtractor::placeOfRow(quint32 item) const
{
    return placeOfRow(m_reader->placeOf(item));
}

QString LevelExtractor::placeOfRow(const QString &place) const
{
    return u"row %1 (%2)"_s.arg(QString::number(m_rows + 1), place);
}

void LevelExtractor::scanItems(LevelState &state, CellArena &arena)
{
    values::ColumnScan *scan = m_scans.data() + state.firstColumn;
    if (m_options.outputSubTags) {
        scan->add(tree().raw(state.occurrence).view(),
                  [&] { return placeOfRow(state.occurrence); });
        ++scan;
    }
    for (size_t i = 0; i < state.level.items.size(); ++i, ++scan) {
        if (!scan->isDecided() && state.found[i] != MarkupTree::kNone) {
            scanItem(state.level.items[i], state.found[i], arena, scan);
        }
    }
}

/// Most values are one piece of text without escapes, and need no cell.
inline void LevelExtractor::scanItem(const LevelItem &item, quint32 found, CellArena &arena,
                                     values::ColumnScan *scan)
{
    const std::optional<TextSpan> text = m_items.singleText(tree(), item, found);
    const bool isPlain = text && (text->form() == TextForm::Plain);
    if (isPlain) {
        scanText(
            tree().raw(*text).view(), tree().isQuoted(*text), [&] { return placeOfRow(found); },
            scan);
    } else {
        scanCell(m_items.cellOf(tree(), item, found, arena), found, scan);
    }
}

/// Only in JSON the quotes of a value say that it is a text.
template <class Place>
inline void LevelExtractor::scanText(std::string_view text, bool isQuoted, const Place &place,
                                     values::ColumnScan *scan) const
{
    if (!m_isJson) {
        scan->add(text, place);
    } else if (isQuoted) {
        scan->addText(text, place);
    } else if (text == "true" || text == "false") {
        scan->addBoolean(text, place);
    } else if (!m_items.isMissingNull(text)) {
        scan->addNumber(text, place);
    }
}

/// In JSON, a text that is not plain was in quotes, or is a NaN or an infinity.
void LevelExtractor::scanCell(const uchar *cell, quint32 item, values::ColumnScan *scan) const
{
    if (cell == cell::missingTextCell()) {
        return;
    }
    const QByteArray bytes = utf8Of(cell);
    const std::string_view value = viewOf(bytes);
    const auto place = [&] { return placeOfRow(item); };
    m_isJson ? scan->addText(value, place) : scan->add(value, place);
}

// ---- Cells of numbers.

void LevelExtractor::setTypes(size_t columns)
{
    m_options.types.resize(m_options.types.empty() ? 0 : columns, 'U');
    m_missing.assign(columns, cell::missingTextCell());
    for (size_t i = 0; i < m_options.types.size(); ++i) {
        const char letter = m_options.types[i];
        m_missing[i] = letter == 'K'   ? cell::missingKeyCell()
                       : letter == 'F' ? cell::missingDoubleCell()
                                       : cell::missingTextCell();
    }
    m_cells = m_missing;
}

void LevelExtractor::fillTypedCells(LevelState &state, CellArena &arena)
{
    auto column = static_cast<size_t>(state.firstColumn);
    if (m_options.outputSubTags) {
        m_cells[column] = nameCell(state.occurrence, column, arena);
        ++column;
    }
    for (size_t i = 0; i < state.level.items.size(); ++i, ++column) {
        const LevelItem &item = state.level.items[i];
        const bool isInTree = state.found[i] != MarkupTree::kNone;
        const MarkupTokenizer::Leaf *const leaf = leafOf(state, i);
        const char type = m_options.types[column];
        if (type == 'K' || type == 'F') {
            m_cells[column] = typedCell(item, state.found[i], leaf, column, arena);
        } else if (leaf != nullptr) {
            m_cells[column] = m_items.textCellOf(tree(), leaf->text, arena);
        } else if (isInTree && type == 'J') {
            m_cells[column] = m_items.jsonCellOf(tree(), item, state.found[i], arena);
        } else {
            m_cells[column] = isInTree ? m_items.cellOf(tree(), item, state.found[i], arena)
                                       : m_items.absentCell(item, arena);
        }
        if ((isInTree || leaf != nullptr) && !state.wasFound[i]) {
            state.wasFound[i] = true;
        }
    }
}

/// The cell of the name of an occurrence.
const uchar *LevelExtractor::nameCell(quint32 occurrence, size_t column, CellArena &arena)
{
    const RawText name = tree().raw(occurrence);
    if (isNumberColumn(column)) {
        const std::u16string text = decoded(name);
        return numberCell(viewOf(QStringView(text).toUtf8()), column, arena);
    }
    return m_options.types[column] == 'J' ? m_items.quotedCell(decoded(name), arena)
                                          : textCell(arena, name);
}

/// The cell of a number; `found` may be kNone, and `leaf` null.
inline const uchar *LevelExtractor::typedCell(const LevelItem &item, quint32 found,
                                              const MarkupTokenizer::Leaf *leaf, size_t column,
                                              CellArena &arena)
{
    const bool isFound = found != MarkupTree::kNone;
    const std::optional<TextSpan> text = leaf != nullptr ? std::optional(leaf->text)
                                         : isFound       ? m_items.singleText(tree(), item, found)
                                                         : std::nullopt;
    if (text && text->form() == TextForm::Plain) {
        const std::string_view value = tree().raw(*text).view();
        return m_items.isMissingNull(value) && !tree().isQuoted(*text)
                   ? m_missing[column]
                   : numberCell(value, column, arena);
    }
    const uchar *const built =
        isFound ? m_items.cellOf(tree(), item, found, arena) : m_items.absentCell(item, arena);
    return built == cell::missingTextCell() ? m_missing[column]
                                            : numberCell(viewOf(utf8Of(built)), column, arena);
}

const uchar *LevelExtractor::numberCell(std::string_view text, size_t column, CellArena &arena)
{
    quint32 key = 0;
    double value = 0;
    const bool isKey = m_options.types[column] == 'K';
    if (isKey ? !parseKey(text, &key) : !parseFinite(text, &value)) {
        setBadValue(text, column);
        return m_missing[column];
    }
    uchar *const room = arena.alloc(isKey ? cell::kKeyBytes : cell::kDoubleBytes);
    isKey ? storeNative(key, room) : storeNative(value, room);
    return room;
}

void LevelExtractor::setBadValue(std::string_view text, size_t column)
{
    constexpr size_t kShownBytes = 200;
    if (!m_badValue) {
        const std::string_view shown = text.substr(0, kShownBytes);
        m_badValue = BadValue{columnNames().at(static_cast<qsizetype>(column)),
                              QString::fromUtf8(shown.data(), static_cast<qsizetype>(shown.size())),
                              m_options.types[column]};
    }
}

} // namespace corvanta::markup
