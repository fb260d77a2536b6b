// The literal that replaces the content of an axis (ECMA-376 part 1, 21.2.2.149 numLit, 21.2.2.200
// strLit):
//
//   <c:val><c:numLit>
//     <c:ptCount val="3"/>                        all rows, also those without a point
//     <c:pt idx="0"><c:v>1.5</c:v></c:pt>         index of the row, from 0
//     <c:pt idx="2"><c:v>7</c:v></c:pt>           an index that is missing is a gap
//   </c:numLit></c:val>
#include "codecs/charts/series_writer.h"

#include "base/number.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace corvanta::charts {

namespace {

/// Size of the blocks.
constexpr size_t kBlockBytes = size_t(64) * 1024;
/// Markup and values of up to this size are written in one step; "&" becomes 5 bytes.
constexpr size_t kShortBytes = 4096;
constexpr size_t kMaxBytesPerByte = 5;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Skips digits; returns how many.
size_t skipDigits(std::string_view text, size_t *at)
{
    const size_t begin = *at;
    while (*at < text.size() && isDigit(text[*at])) {
        ++*at;
    }
    return *at - begin;
}

void skipSign(std::string_view text, size_t *at)
{
    if (*at < text.size() && (text[*at] == '+' || text[*at] == '-')) {
        ++*at;
    }
}

/// Whether a text of the form of a number is one that a double can hold.
bool isInRange(std::string_view text)
{
    double value = 0;
    // The parser does not accept "+".
    return parseDouble(text.starts_with('+') ? text.substr(1) : text, &value) &&
           std::isfinite(value);
}

std::string_view view(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

/// The prefix of an element's name with its colon; empty if there is none.
QByteArray prefixOf(QByteArrayView name)
{
    return name.first(name.indexOf(':') + 1).toByteArray();
}

/// The replacement of a reserved character; empty for others. A carriage return would be read as a
/// line feed (XML 1.0, section 2.11).
std::string_view replacement(char c)
{
    switch (c) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '\r':
        return "&#13;";
    default:
        return {};
    }
}

/// Escape into `out`; returns the end.
char *putEscaped(std::string_view value, char *out)
{
    for (const char c : value) {
        const std::string_view replaced = replacement(c);
        if (replaced.empty()) {
            *out++ = c;
        } else {
            std::memcpy(out, replaced.data(), replaced.size());
            out += replaced.size();
        }
    }
    return out;
}

/// Copy to `out`, which has room for the text; returns the end.
char *putText(std::string_view text, char *out)
{
    std::memcpy(out, text.data(), text.size());
    return out + text.size();
}

/// Whether all axes with data have a text there, also those that the series lacks.
bool isComplete(const SeriesValues &values, qint64 index)
{
    return std::none_of(values.begin(), values.end(), [&](const ValueList *list) {
        return list != nullptr && list->isEmptyAt(index);
    });
}

/// Whether an axis gets a point: a row without a category has none in any axis, and otherwise the
/// texts of the other axes decide.
bool hasPoint(const SeriesValues &values, size_t axis, qint64 index)
{
    for (size_t i = 0; i < values.size(); ++i) {
        const bool decides = i == 0 || i != axis;
        if (decides && values[i] != nullptr && values[i]->isEmptyAt(index)) {
            return false;
        }
    }
    return true;
}

/// Whether no axis has a text there: an empty row is not reported as a gap.
bool isBlank(const SeriesValues &values, qint64 index)
{
    return std::all_of(values.begin(), values.end(), [&](const ValueList *list) {
        return list == nullptr || list->isEmptyAt(index);
    });
}

/// The rows in which some axes have a text and others do not, up to the end of the longest axis.
ValueCount countGaps(const SeriesValues &values)
{
    qint64 size = 0;
    for (const ValueList *list : values) {
        size = std::max(size, list != nullptr ? list->size() : 0);
    }
    ValueCount gaps;
    for (qint64 i = 0; i < size; ++i) {
        if (!isComplete(values, i) && !isBlank(values, i)) {
            gaps.add(i);
        }
    }
    return gaps;
}

} // namespace

bool isNumberText(std::string_view text)
{
    size_t at = 0;
    skipSign(text, &at);
    size_t digits = skipDigits(text, &at);
    if (at < text.size() && text[at] == '.') {
        ++at;
        digits += skipDigits(text, &at);
    }
    if (digits == 0) {
        return false;
    }
    const bool hasExponent = at < text.size() && (text[at] == 'e' || text[at] == 'E');
    if (hasExponent) {
        ++at;
        skipSign(text, &at);
        if (skipDigits(text, &at) == 0) {
            return false;
        }
    }
    // Only long numbers can exceed the range.
    constexpr size_t kMaxDigits = 300;
    return at == text.size() && ((!hasExponent && digits < kMaxDigits) || isInRange(text));
}

SeriesWriter::SeriesWriter(QByteArrayView part, Put put)
    : m_part(part)
    , m_put(std::move(put))
    , m_block(kBlockBytes)
{
}

Result<SeriesReport, opc::Error> SeriesWriter::series(const ChartTag &tag,
                                                      const SeriesValues &values)
{
    SeriesReport report;
    report.gaps = countGaps(values);
    for (const AxisPlace &place : tag.axes) {
        const auto index = static_cast<size_t>(place.axis);
        if (values[index] != nullptr) {
            axis(place, values, &report.notNumbers[index]);
        }
    }
    if (m_fault) {
        return *m_fault;
    }
    return report;
}

Result<void, opc::Error> SeriesWriter::replaceTag(const ChartTag &tag)
{
    if (!tag.name) {
        copyTo(tag.begin);
        text(tag.written);
        m_copied = tag.end;
    } else if (tag.name->begin >= m_copied) {
        // The programs read a cell again, with the tag in it.
        copyTo(tag.name->begin);
        const QByteArray value = prefixOf(tag.name->element) + 'v';
        text('<' + value + '>');
        escaped(view(tag.reference.toUtf8()));
        text("</" + value + '>');
        m_copied = tag.name->end;
    }
    return done();
}

Result<void, opc::Error> SeriesWriter::finish()
{
    copyTo(m_part.size());
    flush();
    return done();
}

Result<void, opc::Error> SeriesWriter::done() const
{
    if (m_fault) {
        return *m_fault;
    }
    return {};
}

void SeriesWriter::copyTo(qsizetype offset)
{
    text(m_part.sliced(m_copied, offset - m_copied));
    m_copied = offset;
}

void SeriesWriter::axis(const AxisPlace &place, const SeriesValues &values, ValueCount *notNumbers)
{
    const ValueList &list = *values[static_cast<size_t>(place.axis)];
    const bool isNumber = place.kind == AxisKind::Number;
    openAxis(place, list.size());
    ValueList::Cursor cursor(list);
    for (qint64 i = 0; i < list.size() && !m_fault; ++i) {
        std::string_view value = cursor.next();
        if (!hasPoint(values, static_cast<size_t>(place.axis), i)) {
            continue;
        }
        if (isNumber && !isNumberText(value)) {
            notNumbers->add(i);
            value = "0";
        }
        point(i, value);
    }
    closeAxis(place);
}

void SeriesWriter::closeAxis(const AxisPlace &place)
{
    text("</" + m_literal + "></");
    text(place.name);
    text(">");
    m_copied = place.end;
}

void SeriesWriter::openAxis(const AxisPlace &place, qint64 count)
{
    const QByteArray prefix = prefixOf(place.name);
    m_literal = prefix + (place.kind == AxisKind::Number ? "numLit" : "strLit");
    m_pointOpen = '<' + prefix + "pt idx=\"";
    m_pointMiddle = "\"><" + prefix + "v>";
    m_pointClose = "</" + prefix + "v></" + prefix + "pt>";
    m_pointBytes = view(m_pointOpen).size() + kNumberChars + view(m_pointMiddle).size() +
                   view(m_pointClose).size();
    copyTo(place.isEmptyTag ? place.openEnd - 2 : place.openEnd);
    text((place.isEmptyTag ? "><" : "<") + m_literal + "><" + prefix + "ptCount val=\"" +
         QByteArray::number(count) + "\"/>");
}

void SeriesWriter::point(qint64 index, std::string_view value)
{
    if (value.size() > kShortBytes || m_pointBytes > kShortBytes) {
        longPoint(index, value);
        return;
    }
    char *begin = room(m_pointBytes + value.size() * kMaxBytesPerByte);
    if (begin == nullptr) {
        return;
    }
    char *out = putText(view(m_pointOpen), begin);
    out += putUInt(static_cast<quint64>(index), out);
    out = putText(view(m_pointMiddle), out);
    out = putEscaped(value, out);
    out = putText(view(m_pointClose), out);
    m_used += static_cast<size_t>(out - begin);
}

void SeriesWriter::longPoint(qint64 index, std::string_view value)
{
    text(m_pointOpen + QByteArray::number(index) + m_pointMiddle);
    escaped(value);
    text(m_pointClose);
}

void SeriesWriter::escaped(std::string_view value)
{
    for (; !value.empty(); value.remove_prefix(std::min(kShortBytes, value.size()))) {
        char *begin = room(kShortBytes * kMaxBytesPerByte);
        if (begin == nullptr) {
            return;
        }
        m_used += static_cast<size_t>(putEscaped(value.substr(0, kShortBytes), begin) - begin);
    }
}

void SeriesWriter::text(QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const qsizetype n = std::min(bytes.size(), static_cast<qsizetype>(kShortBytes));
        char *out = room(kShortBytes);
        if (out == nullptr) {
            return;
        }
        std::memcpy(out, bytes.data(), static_cast<size_t>(n));
        m_used += static_cast<size_t>(n);
        bytes = bytes.sliced(n);
    }
}

char *SeriesWriter::room(size_t bytes)
{
    if (m_block.size() - m_used < bytes) {
        flush();
    }
    return m_fault ? nullptr : m_block.data() + m_used;
}

void SeriesWriter::flush()
{
    if (m_fault || m_used == 0) {
        return;
    }
    const auto done = m_put({m_block.data(), static_cast<qsizetype>(m_used)});
    m_used = 0;
    if (!done) {
        m_fault = done.fault();
    }
}

} // namespace corvanta::charts
