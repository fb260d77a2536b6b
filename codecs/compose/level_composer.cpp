// What is composed, for a level whose items are a text, the call of a sub-level and a text:
//
//     [,] line-break text | elements of the sub-level, for the rows of a partition | line-break
//     text
//
//     ","            before every element of a comma-separated level but its first
//     line-break     for readable XML: "\n" and spaces; else empty
//
// The values of one operation, each of which may be left out with what surrounds it:
//
//     before value after text before value after text ... tail
//
// before/after: the key or tags of the column; text: the separator; tail: only if a value was
// written.
#include "codecs/compose/level_composer.h"

#include "base/mapped.h"
#include "base/number_cell.h"
#include "base/text/json_number.h"
#include "base/utf.h"
#include "codecs/compose/escape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <map>

namespace corvanta::compose {

namespace {

const FixedText kNothing;
const FixedText kComma(u",");
const FixedText kQuote(u"\"");
const FixedText kTrue(u"true");
const FixedText kFalse(u"false");
const FixedText kNan(u"nan");
const FixedText kInfinite(u"inf");
const FixedText kMinusInfinite(u"-inf");

/// Texts up to this size, in units, get room for the worst case without being measured.
constexpr qsizetype kShortText = qsizetype(16) * 1024;
/// Characters that most formats print at most; longer numbers are formatted on the heap.
constexpr qsizetype kFloatChars = 64;

/// Widen `n` characters to units, in blocks of 16 (so `out` has room for the next multiple of 16).
/// False when they are not all ASCII.
bool widenAscii(const char *in, qsizetype n, char16_t *out)
{
    quint32 high = 0;
    for (qsizetype i = 0; i < n; i += kWidenBlock) {
        high |= widenBlock(in + i, out + i);
    }
    return high == 0;
}

bool isSameKey(const uchar *a, const uchar *b)
{
    const auto left = loadNative<quint32>(a);
    const auto right = loadNative<quint32>(b);
    return left == right || (cell::isMissingKey(left) && cell::isMissingKey(right));
}

bool isSameDouble(const uchar *a, const uchar *b)
{
    const auto left = loadNative<double>(a);
    const auto right = loadNative<double>(b);
    const bool areNan = std::isnan(left) && std::isnan(right);
    return left == right || (areNan && cell::isMissingDouble(left) == cell::isMissingDouble(right));
}

bool isSameText(const uchar *a, const uchar *b)
{
    const cell::Text left = cell::readText(a);
    const cell::Text right = cell::readText(b);
    return left.code == right.code && left.view() == right.view();
}

bool isSameCell(cell::Type type, const uchar *a, const uchar *b)
{
    switch (type) {
    case cell::Type::Key:
        return isSameKey(a, b);
    case cell::Type::Double:
        return isSameDouble(a, b);
    case cell::Type::Text:
        break;
    }
    return isSameText(a, b);
}

/// "true" and "True", "false" and "False"; null for other texts.
const FixedText *asBoolean(std::u16string_view text)
{
    if (text == u"true" || text == u"True") {
        return &kTrue;
    }
    return text == u"false" || text == u"False" ? &kFalse : nullptr;
}

const FixedText *pointerTo(const std::optional<FixedText> &text)
{
    return text ? &*text : nullptr;
}

const FixedText *nameOf(double notFinite)
{
    return std::isnan(notFinite) ? &kNan : notFinite > 0 ? &kInfinite : &kMinusInfinite;
}

template <class Escapes> qsizetype roomFor(std::u16string_view text)
{
    const auto n = static_cast<qsizetype>(text.size());
    return n <= kShortText ? n * Escapes::kWorst : escapedSize<Escapes>(text.data(), n);
}

template <class Escapes> char16_t *escaped(std::u16string_view text, char16_t *out)
{
    return putEscaped<Escapes>(text.data(), static_cast<qsizetype>(text.size()), out);
}

template <class Escapes> char16_t *quoted(std::u16string_view text, char16_t *out)
{
    *out++ = u'"';
    out = escaped<Escapes>(text, out);
    *out++ = u'"';
    return out;
}

using ColumnTypes = std::map<int, cell::Type>;

void addColumns(const ComposeOperation &operation, ColumnTypes *types)
{
    for (const ComposeOperation::Column &column : operation.columns) {
        types->emplace(column.input, column.type);
    }
}

std::vector<CellColumn> columnsOf(const ColumnTypes &types)
{
    return mapped<std::vector<CellColumn>>(types, [](const auto &column) {
        return CellColumn{column.first, column.second};
    });
}

/// All columns that the levels use.
ColumnTypes allColumns(const std::vector<ComposeLevel> &levels)
{
    ColumnTypes types;
    for (const ComposeLevel &level : levels) {
        if (level.partition) {
            types.emplace(level.partition->input, level.partition->type);
        }
        for (const ComposeOperation &operation : level.operations) {
            addColumns(operation, &types);
        }
    }
    return types;
}

/// The columns that `level` needs after its row: its partition, and those of what it writes after
/// its first sub-level. A further sub-level writes an element of that row, from any of `all`.
std::vector<CellColumn> keptColumns(const ComposeLevel &level, const ColumnTypes &all)
{
    ColumnTypes types;
    if (level.partition) {
        types.emplace(level.partition->input, level.partition->type);
    }
    const auto end = level.operations.end();
    auto next = std::find_if(level.operations.begin(), end, std::mem_fn(&ComposeOperation::isCall));
    for (next += next != end ? 1 : 0; next != end; ++next) {
        if (next->isCall()) {
            return columnsOf(all);
        }
        addColumns(*next, &types);
    }
    return columnsOf(types);
}

} // namespace

LevelComposer::LevelComposer(std::vector<ComposeLevel> levels, ValueRules rules, TextBlock &block)
    : m_open{0}
    , m_rules(std::move(rules))
    , m_block(block)
{
    const ColumnTypes all = allColumns(levels);
    m_levels.resize(levels.size());
    for (size_t i = 0; i < levels.size(); ++i) {
        const std::vector<ComposeOperation> &operations = levels[i].operations;
        m_levels[i].hasSubLevels = std::any_of(operations.begin(), operations.end(),
                                               std::mem_fn(&ComposeOperation::isCall));
        m_levels[i].kept.setColumns(keptColumns(levels[i], all));
        m_levels[i].plan = std::move(levels[i]);
    }
}

bool LevelComposer::isSamePartition(const Level &level, Cells cells)
{
    const CellColumn &column = *level.plan.partition;
    return isSameCell(column.type, level.kept.cells()[column.input], cells[column.input]);
}

void LevelComposer::putRow(const RowView &row)
{
    if (m_open.size() > 1 || top().next != 0) {
        finishElements(row.cells);
    }
    if (top().hasSubLevels) {
        top().kept.keep(row.cells);
    }
    run(row.cells);
}

/// Complete the elements that the row is not a part of.
void LevelComposer::finishElements(Cells cells)
{
    size_t depth = 1;
    while (depth < m_open.size() && isSamePartition(m_levels[m_open[depth]], cells)) {
        ++depth;
    }
    closeDownTo(depth);
    finishTop();
}

void LevelComposer::endElements()
{
    closeDownTo(1);
    finishTop();
    m_levels[0].isFirstElement = true;
}

/// Remove levels from the stack until `depth` are left. A level that continues after its pause may
/// open others; these are on top of it and are closed first.
void LevelComposer::closeDownTo(size_t depth)
{
    while (m_open.size() > depth) {
        Level &level = top();
        if (level.next != 0) {
            run(level.kept.cells());
        } else {
            level.isFirstElement = true;
            m_open.pop_back();
        }
    }
}

/// Complete the open element of the innermost level, if it has one.
void LevelComposer::finishTop()
{
    const size_t depth = m_open.size();
    while (top().next != 0) {
        run(top().kept.cells());
        closeDownTo(depth);
    }
}

inline void LevelComposer::startOrResume(Level &level)
{
    if (level.next == 0) {
        if (level.plan.commaSeparated && !level.isFirstElement) {
            m_block.append(kComma);
        }
        level.isFirstElement = false;
    }
    if (level.next < level.plan.operations.size()) {
        m_block.append(level.plan.lineBreak);
    }
}

void LevelComposer::openSubLevel(size_t index, Cells cells)
{
    m_open.push_back(index);
    m_levels[index].kept.keep(cells);
}

inline void LevelComposer::put(const Operation &operation, Cells cells)
{
    switch (operation.kind) {
    case Operation::Kind::Text:
        m_block.append(operation.text);
        break;
    case Operation::Kind::Values:
        putValues(operation, cells);
        break;
    case Operation::Kind::QuotedValue:
        m_block.append(kQuote);
        putValues(operation, cells);
        m_block.append(kQuote);
        break;
    case Operation::Kind::RawValue:
        if (!putRaw(operation.columns.front(), cells[operation.columns.front().input]) &&
            operation.needsValue) {
            countLacking(operation);
        }
        break;
    case Operation::Kind::CommaIfWritten:
        m_block.append(m_lastWrote ? kComma : kNothing);
        break;
    case Operation::Kind::SubLevel: // see runOperations()
    case Operation::Kind::Nothing:
        break;
    }
}

/// Write an element of the innermost level, or the rest of the one it paused in, and the first
/// element of each sub-level that this opens.
void LevelComposer::run(Cells cells)
{
    while (runOperations(top(), cells)) {
    }
}

/// Run the operations of `level`, the innermost one, from the next one to the end. Returns true
/// when an operation opened a sub-level before.
bool LevelComposer::runOperations(Level &level, Cells cells)
{
    const std::vector<Operation> &operations = level.plan.operations;
    startOrResume(level);
    while (level.next < operations.size()) {
        const Operation &operation = operations[level.next++];
        if (operation.kind == Operation::Kind::SubLevel) {
            openSubLevel(operation.subLevel, cells);
            return true;
        }
        put(operation, cells);
    }
    level.next = 0;
    return false;
}

void LevelComposer::putValues(const Operation &operation, Cells cells)
{
    bool wrote = false;
    for (const Column &column : operation.columns) {
        wrote |=
            putCell(operation.form, column, cells[column.input], wrote ? operation.text : kNothing);
    }
    if (wrote) {
        m_block.append(operation.tail);
    } else if (operation.needsValue || (operation.followsComma && m_lastWrote)) {
        countLacking(operation);
    }
    m_lastWrote = wrote;
}

void LevelComposer::countLacking(const Operation &operation)
{
    m_lacking.add(operation.columns.empty() ? -1 : operation.columns.front().input);
}

/// Write one value after `lead`. Returns false when the value is left out.
bool LevelComposer::putCell(Operation::TextForm form, const Column &column, const uchar *cell,
                            const FixedText &lead)
{
    switch (column.type) {
    case cell::Type::Key: {
        const auto key = loadNative<quint32>(cell);
        std::array<char, kNumberChars> digits{};
        return cell::isMissingKey(key)
                   ? putFixed(pointerTo(m_rules.missingNumber), column, lead)
                   : putNumber(digits.data(), putUInt(key, digits.data()), column, lead);
    }
    case cell::Type::Double:
        return putFloat(loadNative<double>(cell), column, lead);
    case cell::Type::Text:
        break;
    }
    const cell::Text text = cell::readText(cell);
    return text.isMissing() ? putFixed(pointerTo(m_rules.missingText), column, lead)
                            : putText(form, column, text.view(), lead);
}

/// Write `lead`, the text before the value, a value of at most `room` units, and the text after it.
template <class Write>
bool LevelComposer::putAround(const Column &column, const FixedText &lead, qsizetype room,
                              Write write)
{
    const qsizetype around = lead.room() + column.before.room() + column.after.room();
    if (char16_t *const out = m_block.reserve(around + room)) {
        m_block.commit(column.after.put(write(column.before.put(lead.put(out)))));
    }
    return true;
}

/// Write a fixed value. Without a text it is left out: false.
bool LevelComposer::putFixed(const FixedText *text, const Column &column, const FixedText &lead)
{
    return text != nullptr &&
           putAround(column, lead, text->room(), [&](char16_t *out) { return text->put(out); });
}

// Always inlined: a call costs 17 of the 130 instructions of a short text.
template <class Escapes>
[[gnu::always_inline]] inline bool
LevelComposer::putString(const Column &column, std::u16string_view text, const FixedText &lead)
{
    constexpr qsizetype kQuotes = 2;
    return putAround(column, lead, roomFor<Escapes>(text) + kQuotes,
                     [&](char16_t *out) { return quoted<Escapes>(text, out); });
}

template <class Escapes>
[[gnu::always_inline]] inline bool
LevelComposer::putMarkup(const Column &column, std::u16string_view text, const FixedText &lead)
{
    return putAround(column, lead, roomFor<Escapes>(text),
                     [&](char16_t *out) { return escaped<Escapes>(text, out); });
}

/// Numbers keep their digits, as JSON does not limit them.
bool LevelComposer::putBare(const Column &column, std::u16string_view text, const FixedText &lead)
{
    const QStringView word(text.data(), static_cast<qsizetype>(text.size()));
    const bool isTrue = word.compare(u"true", Qt::CaseInsensitive) == 0;
    if (isTrue || word.compare(u"false", Qt::CaseInsensitive) == 0) {
        return putFixed(isTrue ? &kTrue : &kFalse, column, lead);
    }
    return isJsonNumber(text) && putUnchanged(column, text, lead);
}

bool LevelComposer::putUnchanged(const Column &column, std::u16string_view text,
                                 const FixedText &lead)
{
    return putAround(column, lead, static_cast<qsizetype>(text.size()),
                     [&](char16_t *out) { return std::copy(text.begin(), text.end(), out); });
}

bool LevelComposer::putText(Operation::TextForm form, const Column &column,
                            std::u16string_view text, const FixedText &lead)
{
    if (column.isReady) {
        return putUnchanged(column, text, lead);
    }
    if (column.isBare && putBare(column, text, lead)) {
        return true;
    }
    const FixedText *const boolean = m_rules.specialBool ? asBoolean(text) : nullptr;
    if (boolean != nullptr) {
        return putFixed(boolean, column, lead);
    }
    switch (form) {
    case Operation::TextForm::JsonString:
        return putString<JsonEscapes>(column, text, lead);
    case Operation::TextForm::JsonStringWithLineFeed:
        return putString<JsonEscapesWithLineFeed>(column, text, lead);
    case Operation::TextForm::JsonStrict:
        return putString<JsonStrictEscapes>(column, text, lead);
    case Operation::TextForm::XmlStrict:
        return putMarkup<XmlStrictEscapes>(column, text, lead);
    case Operation::TextForm::XmlText:
        return putMarkup<XmlTextEscapes>(column, text, lead);
    case Operation::TextForm::XmlAttribute:
        break;
    }
    return putMarkup<XmlAttributeEscapes>(column, text, lead);
}

/// Write a number. `digits` are readable up to the next multiple of 16.
bool LevelComposer::putNumber(const char *digits, qsizetype n, const Column &column,
                              const FixedText &lead)
{
    return putAround(column, lead, n + 16, [&](char16_t *out) {
        // A user's format may hold more than ASCII.
        return out + (widenAscii(digits, n, out) ? n : utf8ToUtf16(digits, n, out));
    });
}

inline bool LevelComposer::putFinite(double value, const Column &column, const FixedText &lead)
{
    std::array<char, kFloatChars> usual{};
    QByteArray longer;
    char *text = usual.data();
    qsizetype n = m_rules.floatFormat.put(value, text, kFloatChars);
    if (n >= kFloatChars) {
        m_rules.floatFormat.append(value, &longer);
        n = longer.size();
        longer.append(16, '\0'); // what putNumber() may read
        text = longer.data();
    }
    if (m_rules.decimalComma) {
        char *const point = std::find(text, text + n, '.');
        if (point != text + n) {
            *point = ',';
        }
    }
    return putNumber(text, n, column, lead);
}

bool LevelComposer::putFloat(double value, const Column &column, const FixedText &lead)
{
    if (cell::isMissingDouble(value)) {
        return putFixed(pointerTo(m_rules.missingNumber), column, lead);
    }
    if (!std::isfinite(value)) {
        if (!m_rules.namesNotFinite) {
            m_lostNumbers.add(column.input);
        }
        return putFixed(m_rules.namesNotFinite ? nameOf(value) : pointerTo(m_rules.notFinite),
                        column, lead);
    }
    return putFinite(value, column, lead);
}

/// Write a cell as text: numbers in their shortest form, missing cells as nothing.
bool LevelComposer::putRaw(const Column &column, const uchar *cell)
{
    if (column.type == cell::Type::Text) {
        const std::u16string_view text = cell::readText(cell).view();
        m_block.append(text);
        return !text.empty();
    }
    qsizetype size = 0;
    if (char16_t *const out = m_block.reserve(kNumberChars)) {
        size = cell::putNumberText(column.type, cell, out);
        m_block.commit(out + size);
    }
    return size > 0;
}

} // namespace corvanta::compose
