#include "actions/shared/level_composer.h"

#include "base/utf.h"
#include "codecs/compose/escape.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace corvanta {

using compose::FixedText;

namespace {

const FixedText kNothing;
const FixedText kComma(u",");
const FixedText kQuote(u"\"");
const FixedText kTrue(u"true");
const FixedText kFalse(u"false");
const FixedText kNan(u"nan");
const FixedText kInfinite(u"inf");
const FixedText kMinusInfinite(u"-inf");

/// Texts up to this size get room for the worst case without a look at them.
constexpr qsizetype kShortText = 16 * 1024;
/// What a usual format prints; what is longer goes the long way.
constexpr qsizetype kFloatChars = 64;

/// Widen `n` characters to units, in blocks of 16 (so `out` has room for the next multiple of 16).
/// False when they are not all ASCII.
bool widenAscii(const char *in, qsizetype n, char16_t *out)
{
    const __m128i zero = _mm_setzero_si128();
    int high = 0;
    for (qsizetype i = 0; i < n; i += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + i));
        high |= _mm_movemask_epi8(bytes);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i), _mm_unpacklo_epi8(bytes, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i + 8), _mm_unpackhi_epi8(bytes, zero));
    }
    return high == 0;
}

bool isSameCell(MetaInfo::MetaTypeColumn type, const uchar *a, const uchar *b)
{
    switch (type) {
    case MetaInfo::Key: {
        const auto left = loadNative<quint32>(a);
        const auto right = loadNative<quint32>(b);
        return left == right || (cell::isMissingKey(left) && cell::isMissingKey(right));
    }
    case MetaInfo::Float: {
        const auto left = loadNative<double>(a);
        const auto right = loadNative<double>(b);
        const bool areNan = std::isnan(left) && std::isnan(right);
        return left == right ||
               (areNan && cell::isMissingDouble(left) == cell::isMissingDouble(right));
    }
    case MetaInfo::Unknown:
        break;
    }
    const cell::Text left = cell::readText(a);
    const cell::Text right = cell::readText(b);
    return left.code == right.code && left.view() == right.view();
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
    return n <= kShortText ? n * Escapes::kWorst : compose::escapedSize<Escapes>(text.data(), n);
}

template <class Escapes> char16_t *escaped(std::u16string_view text, char16_t *out)
{
    return compose::putEscaped<Escapes>(text.data(), static_cast<qsizetype>(text.size()), out);
}

template <class Escapes> char16_t *quoted(std::u16string_view text, char16_t *out)
{
    *out++ = u'"';
    out = escaped<Escapes>(text, out);
    *out++ = u'"';
    return out;
}

} // namespace

LevelComposer::LevelComposer(std::vector<ComposeLevel> levels, ValueRules rules,
                             compose::TextBlock &block)
    : m_open{0}
    , m_rules(std::move(rules))
    , m_block(block)
{
    for (ComposeLevel &plan : levels) {
        const bool hasSubLevels =
            std::any_of(plan.operations.begin(), plan.operations.end(),
                        [](const auto &o) { return o.kind == Operation::Kind::SubLevel; });
        m_levels.push_back({std::move(plan), hasSubLevels});
    }
}

bool LevelComposer::isSamePartition(const Level &level, const OneRow &row) const
{
    const int column = level.plan.partitionColumn;
    return isSameCell(row.schema().types[column].type(), level.kept.getAllColForWrite()[column],
                      row.getAllColForWrite()[column]);
}

void LevelComposer::putRow(const OneRow &row)
{
    size_t depth = 1;
    while (depth < m_open.size() && isSamePartition(m_levels[m_open[depth]], row)) {
        ++depth;
    }
    closeDownTo(depth);
    finishTop();
    startElement(row);
}

void LevelComposer::endElements()
{
    closeDownTo(1);
    finishTop();
    m_levels[0].isFirstElement = true;
    m_levels[0].kept = OneRow();
}

/// Take levels off the stack until `depth` are left. A level that goes on after its pause may open
/// others: these are closed first, as they are then on top of it.
void LevelComposer::closeDownTo(size_t depth)
{
    while (m_open.size() > depth) {
        Level &level = top();
        if (level.next != 0) {
            run(level.kept);
        } else {
            level.isFirstElement = true;
            level.kept = OneRow();
            m_open.pop_back();
        }
    }
}

/// Complete the open element of the innermost level, if it has one.
void LevelComposer::finishTop()
{
    const size_t depth = m_open.size();
    while (top().next != 0) {
        run(top().kept);
        closeDownTo(depth);
    }
}

void LevelComposer::startElement(const OneRow &row)
{
    if (top().hasSubLevels) {
        top().kept.copyFrom(&row);
    }
    run(row);
}

/// Let the innermost level write an element, or the rest of the one it paused in, and each
/// sub-level that this opens its first element.
void LevelComposer::run(const OneRow &row)
{
    while (runOperations(top(), row)) {
    }
}

/// Run the operations of `level`, the innermost one, from where it stands, until the end or until
/// one opened a sub-level: then true.
bool LevelComposer::runOperations(Level &level, const OneRow &row)
{
    const std::vector<Operation> &operations = level.plan.operations;
    if (level.next == 0) {
        if (level.plan.commaSeparated && !level.isFirstElement) {
            m_block.append(kComma);
        }
        level.isFirstElement = false;
    }
    if (level.next < operations.size()) {
        m_block.append(level.plan.lineBreak);
    }
    while (level.next < operations.size()) {
        const Operation &operation = operations[level.next++];
        switch (operation.kind) {
        case Operation::Kind::Text:
            m_block.append(operation.text);
            break;
        case Operation::Kind::Values:
            putValues(operation, row);
            break;
        case Operation::Kind::QuotedValue:
            m_block.append(kQuote);
            putValues(operation, row);
            m_block.append(kQuote);
            break;
        case Operation::Kind::RawValue:
            putRaw(operation, row);
            break;
        case Operation::Kind::CommaIfWritten:
            if (m_lastWrote) {
                m_block.append(kComma);
            }
            break;
        case Operation::Kind::SubLevel:
            m_open.push_back(operation.subLevel);
            top().kept.copyFrom(&row);
            return true;
        case Operation::Kind::Nothing:
            break;
        }
    }
    level.next = 0;
    return false;
}

void LevelComposer::putValues(const Operation &operation, const OneRow &row)
{
    const unsigned char *const *const cells = row.getAllColForWrite();
    bool wrote = false;
    for (const Column &column : operation.columns) {
        wrote |=
            putCell(operation.form, column, cells[column.input], wrote ? operation.text : kNothing);
    }
    if (wrote) {
        m_block.append(operation.tail);
    }
    m_lastWrote = wrote;
}

/// Write one value after `lead`; false when it is left out.
bool LevelComposer::putCell(Operation::TextForm form, const Column &column, const uchar *cell,
                            const FixedText &lead)
{
    switch (column.type) {
    case MetaInfo::Key: {
        const auto key = loadNative<quint32>(cell);
        std::array<char, kNumberChars> digits{};
        return cell::isMissingKey(key)
                   ? putFixed(pointerTo(m_rules.missingNumber), column, lead)
                   : putNumber(digits.data(), putUInt(key, digits.data()), column, lead);
    }
    case MetaInfo::Float:
        return putFloat(loadNative<double>(cell), column, lead);
    case MetaInfo::Unknown:
        break;
    }
    const cell::Text text = cell::readText(cell);
    return text.isMissing() ? putFixed(pointerTo(m_rules.missingText), column, lead)
                            : putText(form, column, text.view(), lead);
}

/// Let `write` put a value of at most `room` units between what stands around it.
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

/// False, and nothing, without a text.
bool LevelComposer::putFixed(const FixedText *text, const Column &column, const FixedText &lead)
{
    return text != nullptr &&
           putAround(column, lead, text->room(), [&](char16_t *out) { return text->put(out); });
}

bool LevelComposer::putText(Operation::TextForm form, const Column &column,
                            std::u16string_view text, const FixedText &lead)
{
    using compose::JsonEscapes;
    using compose::JsonEscapesWithLineFeed;
    using compose::JsonStrictEscapes;
    using compose::XmlAttributeEscapes;
    using compose::XmlStrictEscapes;
    using compose::XmlTextEscapes;
    constexpr qsizetype kQuotes = 2;
    if (m_rules.specialBool) {
        if (const FixedText *const boolean = asBoolean(text)) {
            return putFixed(boolean, column, lead);
        }
    }
    switch (form) {
    case Operation::TextForm::JsonString:
        return putAround(column, lead, roomFor<JsonEscapes>(text) + kQuotes,
                         [&](char16_t *out) { return quoted<JsonEscapes>(text, out); });
    case Operation::TextForm::JsonStringWithLineFeed:
        return putAround(column, lead, roomFor<JsonEscapesWithLineFeed>(text) + kQuotes,
                         [&](char16_t *out) { return quoted<JsonEscapesWithLineFeed>(text, out); });
    case Operation::TextForm::JsonStrict:
        return putAround(column, lead, roomFor<JsonStrictEscapes>(text) + kQuotes,
                         [&](char16_t *out) { return quoted<JsonStrictEscapes>(text, out); });
    case Operation::TextForm::XmlStrict:
        return putAround(column, lead, roomFor<XmlStrictEscapes>(text),
                         [&](char16_t *out) { return escaped<XmlStrictEscapes>(text, out); });
    case Operation::TextForm::XmlText:
        return putAround(column, lead, roomFor<XmlTextEscapes>(text),
                         [&](char16_t *out) { return escaped<XmlTextEscapes>(text, out); });
    case Operation::TextForm::XmlAttribute:
        break;
    }
    return putAround(column, lead, roomFor<XmlAttributeEscapes>(text),
                     [&](char16_t *out) { return escaped<XmlAttributeEscapes>(text, out); });
}

/// `digits` may be read up to the next multiple of 16.
bool LevelComposer::putNumber(const char *digits, qsizetype n, const Column &column,
                              const FixedText &lead)
{
    return putAround(column, lead, n + 16, [&](char16_t *out) {
        // A user's format may hold more than ASCII.
        return out + (widenAscii(digits, n, out) ? n : utf8ToUtf16(digits, n, out));
    });
}

bool LevelComposer::putFloat(double value, const Column &column, const FixedText &lead)
{
    if (cell::isMissingDouble(value)) {
        return putFixed(pointerTo(m_rules.missingNumber), column, lead);
    }
    if (!std::isfinite(value)) {
        return putFixed(m_rules.namesNotFinite ? nameOf(value) : pointerTo(m_rules.notFinite),
                        column, lead);
    }
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

void LevelComposer::putRaw(const Operation &operation, const OneRow &row)
{
    const QStringView text = row.textView(operation.columns.front().input);
    m_block.append({text.utf16(), static_cast<size_t>(text.size())});
}

} // namespace corvanta
