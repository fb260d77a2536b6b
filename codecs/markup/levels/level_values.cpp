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

/// Scans the leaves of the first level's occurrences before they get into a tree, as far as their
/// names are the whole path of one item. All others are found in the tree.
class LevelExtractor::LeafScan final : public MarkupTreeBuilder::LeafTaker
{
public:
    explicit LeafScan(LevelExtractor &extractor)
        : m_extractor(extractor)
    {
        const LevelState &first = *extractor.m_levels.front();
        const PathSyntax syntax{extractor.m_options.zeroBased, u'/'};
        std::vector<std::vector<PathStep>> paths;
        for (const LevelItem &item : first.level.items) {
            paths.push_back(parsePath(item.path, syntax));
        }
        for (size_t i = 0; i < paths.size(); ++i) {
            if (!first.level.items[i].tagName && isName(paths[i])) {
                const std::u16string &name = paths[i].front().name;
                const QString &path = first.level.items[i].path;
                const bool isWritten = QStringView(name) == path.toLower();
                m_columns.push_back({name,
                                     static_cast<size_t>(first.firstColumn) + i +
                                         (extractor.m_options.outputSubTags ? 1 : 0),
                                     isWritten ? path.toStdString() : std::string()});
            }
        }
        if (extractor.m_levels.size() > 1) {
            paths.push_back(extractor.m_levels[1]->initialPath);
        }
        std::erase_if(m_columns, [&](const Column &column) { return isShared(column, paths); });
    }

    bool take(const MarkupTokenizer &tokenizer, const MarkupTokenizer::Leaf &leaf) override
    {
        if (Column *const column = find(tokenizer.resolve(leaf.name))) {
            scan(tokenizer, leaf, *column);
            return true;
        }
        return false;
    }

private:
    struct Column
    {
        std::u16string name; // in lower case
        size_t index = 0;
        std::string bytes; // of the last name that matched: most are equal
        qint64 last = 0;   // occurrence in which it had a value: further ones are not read
    };

    static bool hasBytes(const RawText &name, const Column &column)
    {
        return name.view().size() == column.bytes.size() &&
               equalBytes(name.data, column.bytes.data(), column.bytes.size());
    }
    /// The column with the name; null if it is not among the next ones. Most records have the same
    /// members in the same order. Some lack one, or have one at another place than the sample: then
    /// the next member is expected where it was before.
    Column *find(const RawText &name)
    {
        constexpr size_t kSkipped = 4;
        constexpr size_t kSearched = 32;
        const size_t count = m_columns.size();
        size_t index = m_next;
        for (size_t i = 0; i < std::min(kSearched, count); ++i, ++index) {
            index = index < count ? index : 0;
            if (hasBytes(name, m_columns[index])) {
                m_next = i < kSkipped ? index + 1 : m_next;
                return &m_columns[index];
            }
        }
        index = m_next;
        for (size_t i = 0; i < std::min(kSkipped, count); ++i, ++index) {
            index = index < count ? index : 0;
            if (nameMatches(name, m_columns[index].name)) {
                m_columns[index].bytes = name.view();
                return &m_columns[index];
            }
        }
        return nullptr;
    }
    static bool isName(const std::vector<PathStep> &path)
    {
        return path.size() == 1 && !path[0].anyName && !path[0].isIndexed && path[0].index == 0 &&
               !path[0].isAttribute() && !path[0].name.empty();
    }
    /// Whether other paths select elements of the name, too.
    static bool isShared(const Column &column, const std::vector<std::vector<PathStep>> &paths)
    {
        const auto begins = [&](const std::vector<PathStep> &path) {
            return path.empty() || path[0].anyName || path[0].name == column.name;
        };
        return std::count_if(paths.begin(), paths.end(), begins) != 1;
    }
    void scan(const MarkupTokenizer &tokenizer, const MarkupTokenizer::Leaf &leaf, Column &column)
    {
        values::ColumnScan &scan = m_extractor.m_scans[column.index];
        const bool isFirst =
            std::exchange(column.last, m_extractor.m_occurrences) != m_extractor.m_occurrences;
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
    std::vector<Column> m_columns;
    size_t m_next = 0; // where the next member is expected
};

void LevelExtractor::scanValues(std::span<values::ColumnScan> scans)
{
    m_scans = scans;
    // Where a value depends on more than its leaf, all are found in the tree.
    if (m_options.keepRoot && !m_options.presence && !m_options.allText && !m_options.expandSpans &&
        !m_options.ignoreEmpty && m_options.skip == 0) {
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
        const bool isFound = state.found[i] != MarkupTree::kNone;
        if (isNumberColumn(column)) {
            m_cells[column] = typedCell(item, state.found[i], column, arena);
        } else if (isFound && m_options.types[column] == 'J') {
            m_cells[column] = m_items.jsonCellOf(tree(), item, state.found[i], arena);
        } else {
            m_cells[column] = isFound ? m_items.cellOf(tree(), item, state.found[i], arena)
                                      : m_items.absentCell(item, arena);
        }
        if (isFound && !state.wasFound[i]) {
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

/// The cell of a number; `found` may be kNone.
inline const uchar *LevelExtractor::typedCell(const LevelItem &item, quint32 found, size_t column,
                                              CellArena &arena)
{
    const bool isFound = found != MarkupTree::kNone;
    const std::optional<TextSpan> text =
        isFound ? m_items.singleText(tree(), item, found) : std::nullopt;
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
