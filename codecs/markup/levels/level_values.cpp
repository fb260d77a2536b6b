// What the extractor does with values other than putting them into cells of texts: scans that find
// their kinds, and cells of numbers.
#include "base/bytes.h"
#include "base/cell.h"
#include "base/number.h"
#include "codecs/markup/levels/level_extractor.h"

#include <cmath>

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

/// False also for digits of a number that no double holds.
bool parseFinite(std::string_view text, double *value)
{
    return parseDouble(text, value) &&
           (!std::isinf(*value) || text.back() < '0' || text.back() > '9');
}

} // namespace

// ---- The values without cells.

/// For messages: an item of the row that is scanned now.
QString LevelExtractor::placeOfRow(quint32 item) const
{
    return u"row %1 (%2)"_s.arg(QString::number(m_rows + 1), m_reader->placeOf(item));
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
        scanText(*text, found, scan);
    } else {
        scanCell(m_items.cellOf(tree(), item, found, arena), found, scan);
    }
}

/// Only in JSON the quotes of a value say that it is a text.
inline void LevelExtractor::scanText(TextSpan text, quint32 item, values::ColumnScan *scan)
{
    const auto place = [&] { return placeOfRow(item); };
    const std::string_view value = tree().raw(text).view();
    if (!m_isJson) {
        scan->add(value, place);
    } else if (tree().isQuoted(text)) {
        scan->addText(value, place);
    } else if (value == "true" || value == "false") {
        scan->addBoolean(value, place);
    } else if (!m_items.isMissingNull(tree(), text)) {
        scan->addNumber(value, place);
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
        m_cells[column++] = textCell(arena, tree().raw(state.occurrence));
    }
    for (size_t i = 0; i < state.level.items.size(); ++i, ++column) {
        const LevelItem &item = state.level.items[i];
        const bool isFound = state.found[i] != MarkupTree::kNone;
        if (m_options.types[column] != 'U') {
            m_cells[column] = typedCell(item, state.found[i], column, arena);
        } else {
            m_cells[column] = isFound ? m_items.cellOf(tree(), item, state.found[i], arena)
                                      : m_items.absentCell(item, arena);
        }
        if (isFound && !state.wasFound[i]) {
            state.wasFound[i] = true;
        }
    }
}

/// The cell of a number; `found` may be kNone.
inline const uchar *LevelExtractor::typedCell(const LevelItem &item, quint32 found, size_t column,
                                              CellArena &arena)
{
    const bool isFound = found != MarkupTree::kNone;
    const std::optional<TextSpan> text =
        isFound ? m_items.singleText(tree(), item, found) : std::nullopt;
    if (text && text->form() == TextForm::Plain) {
        return m_items.isMissingNull(tree(), *text)
                   ? m_missing[column]
                   : numberCell(tree().raw(*text).view(), column, arena);
    }
    const uchar *const built =
        isFound ? m_items.cellOf(tree(), item, found, arena) : m_items.absentCell(item, arena);
    return built == cell::missingTextCell() ? m_missing[column]
                                            : numberCell(viewOf(utf8Of(built)), column, arena);
}

const uchar *LevelExtractor::numberCell(std::string_view text, size_t column, CellArena &arena)
{
    constexpr quint64 kGreatestKey = cell::kMissingKeyOther - 1;
    quint64 key = 0;
    double value = 0;
    const bool isKey = m_options.types[column] == 'K';
    if (isKey ? !parseUInt(text, kGreatestKey, &key) : !parseFinite(text, &value)) {
        setBadValue(text, column);
        return m_missing[column];
    }
    uchar *const room = arena.alloc(isKey ? cell::kKeyBytes : cell::kDoubleBytes);
    isKey ? storeNative(static_cast<quint32>(key), room) : storeNative(value, room);
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
