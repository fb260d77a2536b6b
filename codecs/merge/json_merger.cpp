// The texts (RFC 8259, and JSON Lines):
//
//   Lines   value LF value LF ...          the last LF may be missing
//   Array   [ value , value , ... ]        with blanks around each of them
#include "codecs/merge/json_merger.h"

#include "base/text/binary_kind.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>
#include <string_view>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr size_t kBlockBytes = size_t(1) << 20;
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

Fault<MergeError> damagedText(const QString &text, qint64 line)
{
    return {MergeError::Damaged, u"%1 (line %2)"_s.arg(text, QString::number(line))};
}

} // namespace

/// Where a part is: in a text, in brackets, before, in or after its values.
class JsonMerger::Scan
{
public:
    int depth = 0; // of open brackets
    bool isInText = false;
    bool hasValue = false;   // since the last line end (Lines), or in the array (Array)
    bool isAfterEnd = false; // of the array
    qint64 values = 0;
    qint64 line = 1;
    std::string blanks; // between values of an array: not written at its ends

    /// Follow the byte. Returns false for a line end in a text, or a bracket that closes none.
    bool take(char c)
    {
        if (c == '\n') {
            ++line;
            return !isInText;
        }
        if (isInText) {
            isInText = m_isEscaped || c != '"';
            m_isEscaped = !m_isEscaped && c == '\\';
            return true;
        }
        isInText = c == '"';
        depth += c == '{' || c == '[' ? 1 : c == '}' || c == ']' ? -1 : 0;
        return depth >= 0;
    }

private:
    bool m_isEscaped = false; // the next byte of the text
};

Result<void, MergeError> JsonMerger::addPart(ByteSource &source)
{
    std::array<char, 4096> bytes{};
    const qint64 n = readFully(source, bytes.data(), std::ssize(bytes));
    if (n < 0) {
        return Fault{MergeError::Unreadable};
    }
    std::string_view text(bytes.data(), static_cast<size_t>(n));
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
        return Fault{MergeError::Unsupported, u"it is UTF-16; convert it to UTF-8"_s};
    }
    if (const BinaryKind kind = binaryKind(text); kind != BinaryKind::None) {
        return Fault{MergeError::Unsupported,
                     u"it begins like %1"_s.arg(QLatin1StringView(describe(kind)))};
    }
    text.remove_prefix(text.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0);
    const auto first = std::ranges::find_if_not(text, isBlank);
    if (m_form == Form::Array && (first == text.end() || *first != '[')) {
        return Fault{MergeError::Unsupported,
                     u"it does not begin with '[': only arrays of records are joined"_s};
    }
    return {};
}

Result<void, MergeError> JsonMerger::begin(ByteSink &sink)
{
    return m_form == Form::Array ? write("[", sink) : Done();
}

bool JsonMerger::takeByte(char c, Scan *scan)
{
    return m_form == Form::Lines ? takeOfLine(c, scan) : takeOfArray(c, scan);
}

/// Copies every byte but empty lines.
bool JsonMerger::takeOfLine(char c, Scan *scan)
{
    if (!scan->take(c)) {
        return false;
    }
    if (c != '\n' || scan->depth > 0) {
        scan->hasValue = scan->hasValue || !isBlank(c);
        m_out.push_back(c);
        return true;
    }
    if (scan->hasValue) {
        ++scan->values;
        m_out.push_back(c);
    }
    scan->hasValue = false;
    return true;
}

/// Copies what is between the brackets of the array, without the blanks at its ends.
bool JsonMerger::takeOfArray(char c, Scan *scan)
{
    const int depthBefore = scan->depth;
    const bool isOutside = depthBefore == 0 && !scan->isInText;
    if (isOutside && isBlank(c)) {
        return scan->take(c);
    }
    if (!scan->take(c) || (isOutside && (c != '[' || scan->isAfterEnd))) {
        return false;
    }
    if (isOutside) {
        return true;
    }
    if (scan->depth == 0) {
        scan->isAfterEnd = true;
        return true;
    }
    const bool isBetween = depthBefore == 1 && scan->depth == 1 && !scan->isInText;
    if (isBetween && isBlank(c)) {
        scan->blanks.push_back(c);
        return true;
    }
    if (!scan->hasValue) {
        m_out += m_hasValues ? ",\n" : "\n";
        scan->values = 1;
        scan->hasValue = true;
        m_hasValues = true;
    } else {
        m_out += scan->blanks;
    }
    scan->blanks.clear();
    scan->values += isBetween && c == ',' ? 1 : 0;
    m_out.push_back(c);
    return true;
}

/// Checks that the part is complete, and ends its last line.
Result<void, MergeError> JsonMerger::endPart(Scan *scan)
{
    if (scan->depth > 0 || scan->isInText || (m_form == Form::Array && !scan->isAfterEnd)) {
        return damagedText(u"it ends inside a value"_s, scan->line);
    }
    if (m_form == Form::Lines && scan->hasValue) {
        ++scan->values;
        m_out.push_back('\n');
    }
    return {};
}

Result<qint64, MergeError> JsonMerger::copyPart(ByteSource &source, ByteSink &sink)
{
    std::string block(kBlockBytes, '\0');
    Scan scan;
    for (bool isFirst = true;; isFirst = false) {
        const qint64 n = readFully(source, block.data(), std::ssize(block));
        if (n < 0) {
            return Fault{MergeError::Unreadable};
        }
        std::string_view text(block.data(), static_cast<size_t>(n));
        text.remove_prefix(isFirst && text.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0);
        for (const char c : text) {
            if (!takeByte(c, &scan)) {
                return damagedText(u"it is not valid JSON"_s, scan.line - (c == '\n' ? 1 : 0));
            }
        }
        if (n == 0) {
            break;
        }
        if (auto written = write(m_out, sink); !written) {
            return written.fault();
        }
        m_out.clear();
    }
    auto ended = endPart(&scan);
    if (ended) {
        ended = write(m_out, sink);
        m_out.clear();
    }
    return ended ? Result<qint64, MergeError>(scan.values) : ended.fault();
}

Result<void, MergeError> JsonMerger::finish(ByteSink &sink)
{
    return m_form == Form::Array ? write(m_hasValues ? "\n]\n" : "]\n", sink) : Done();
}

} // namespace corvanta
