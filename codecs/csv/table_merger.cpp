// A text is read in records, which say where its header and its rows end:
//
//   byte-order mark    kept at the beginning of the result, if the first text has one
//   "sep=;" line       left out: the result has the separator of the first text
//   header             written once
//   records            copied, or written again field by field
//
// The bytes of a record are those of the text, so that a copy keeps quotes and line ends.
#include "codecs/csv/table_merger.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace corvanta::csv {

namespace {

constexpr size_t kOutBytes = size_t(1) << 20;
constexpr int kNoField = -1;
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

bool isAsciiText(std::string_view text)
{
    char all = 0;
    for (const char c : text) {
        all = static_cast<char>(all | c);
    }
    return (all & 0x80) == 0;
}

QString shown(const std::string &name)
{
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

Fault<MergeError> differentColumn(const std::string &name, const QString &text)
{
    return {MergeError::Different, u"column '%1' %2"_s.arg(shown(name), text)};
}

Fault<MergeError> faultOfRecord(const Fault<Error> &fault, qint64 line)
{
    const QString place = u" (line %1)"_s.arg(line);
    switch (fault.code) {
    case Error::Unreadable:
        break;
    case Error::RecordTooLong:
        return {MergeError::Damaged, u"a record is too long; a quote may not be closed"_s + place};
    case Error::BadQuotes:
        return {MergeError::Damaged, u"a quoted field is not closed"_s + place};
    case Error::Utf16:
        return {MergeError::Unsupported, u"it is UTF-16; convert it to UTF-8"_s};
    case Error::NotText:
        return {MergeError::Unsupported, u"it begins like %1"_s.arg(fault.detail)};
    }
    return {MergeError::Unreadable};
}

} // namespace

/// A text that is open, at its first record after the header.
struct TableMerger::Part
{
    Part(ByteSource &source, const TextForm &form)
        : text(source, form)
    {
    }
    bool hasOneColumn() const { return names.size() == 1; }

    TextReader text;
    std::vector<std::string> names;
    std::string headerBytes; // without a byte-order mark
    bool hasMark = false;
};

TableMerger::TableMerger(MergeMatch match, TextForm form)
    : m_match(match)
    , m_form(std::move(form))
{
}

/// Reads the header. Texts without any are refused: they may be the rest of a failed run.
Result<std::unique_ptr<TableMerger::Part>, MergeError> TableMerger::open(ByteSource &source) const
{
    std::array<char, 3> mark{};
    const bool hasMark = readFully(source, mark.data(), 3) == 3 &&
                         std::string_view(mark.data(), mark.size()) == kUtf8Mark;
    if (!source.seek(0)) {
        return Fault{MergeError::Unreadable};
    }
    auto part = std::make_unique<Part>(source, m_form);
    RecordReader &records = part->text.records();
    const auto more = records.next();
    if (!more) {
        return faultOfRecord(more.fault(), records.line());
    }
    if (!*more) {
        return Fault{MergeError::Damaged, u"it is empty: the header is missing"_s};
    }
    for (const Field &field : records.fields()) {
        part->names.emplace_back(field.view());
    }
    part->headerBytes = records.record();
    part->hasMark = hasMark;
    return part;
}

/// The names and their order, for MergeMatch::Same.
Result<void, MergeError> TableMerger::checkHeader(const Part &part) const
{
    const auto isThere = [](const std::vector<std::string> &names, const std::string &name) {
        return std::ranges::find(names, name) != names.end();
    };
    for (size_t i = 0; i < std::max(part.names.size(), m_names.size()); ++i) {
        if (i < part.names.size() && i < m_names.size() && part.names[i] == m_names[i]) {
            continue;
        }
        if (i < part.names.size() && !isThere(m_names, part.names[i])) {
            return differentColumn(part.names[i], u"is missing in the first part"_s);
        }
        if (i < m_names.size() && !isThere(part.names, m_names[i])) {
            return differentColumn(m_names[i], u"of the first part is missing"_s);
        }
        return differentColumn(i < m_names.size() ? m_names[i] : part.names[i],
                               u"is not in the place that it has in the first part"_s);
    }
    return {};
}

/// The first text decides about the form of the result.
Result<void, MergeError> TableMerger::addPart(ByteSource &source)
{
    const auto opened = open(source);
    if (!opened) {
        return opened.fault();
    }
    const Part &part = **opened;
    if (m_header.empty()) {
        m_header = std::string(part.hasMark ? kUtf8Mark : std::string_view()) + part.headerBytes;
        m_firstCount = part.names.size();
        // A text of one column has none.
        m_separator = part.hasOneColumn() ? m_form.dialect.separator : part.text.separator();
        m_lineEnd = m_header.ends_with("\r\n") ? "\r\n" : "\n";
        if (m_match == MergeMatch::Same) {
            m_names = part.names;
        }
    }
    if (m_match == MergeMatch::Same) {
        return checkHeader(part);
    }
    std::map<std::string_view, int> counts;
    for (const std::string &name : part.names) {
        if (++counts[name] > 1) {
            return differentColumn(name, u"is there twice, but columns are joined by name"_s);
        }
        if (m_indexes.try_emplace(name, static_cast<int>(m_names.size())).second) {
            m_names.push_back(name);
        }
    }
    return {};
}

/// For each column of the result the field of a record; empty if all records stay as they are.
Result<std::vector<int>, MergeError> TableMerger::columnsIn(const Part &part) const
{
    const bool hasOtherForm = part.text.endsLinesWithCr() ||
                              (part.text.separator() != m_separator && !part.hasOneColumn());
    std::vector<int> fields(m_names.size(), kNoField);
    for (size_t i = 0; i < part.names.size(); ++i) {
        const auto found = m_indexes.find(part.names[i]);
        const bool isKnown = m_match == MergeMatch::Same
                                 ? i < m_names.size() && part.names[i] == m_names[i]
                                 : found != m_indexes.end();
        if (!isKnown) {
            return differentColumn(part.names[i], u"has changed during the merge"_s);
        }
        fields[m_match == MergeMatch::Same ? i : static_cast<size_t>(found->second)] =
            static_cast<int>(i);
    }
    return part.names == m_names && !hasOtherForm ? std::vector<int>() : fields;
}

/// Writes the header of the first part as it is, unless other parts have added columns.
Result<void, MergeError> TableMerger::begin(ByteSink & /*sink*/)
{
    const bool isUnchanged = m_names.size() == m_firstCount && !m_header.ends_with('\r');
    if (isUnchanged) {
        m_out = m_header;
        endLine(m_header);
        return {};
    }
    m_out = m_header.starts_with(kUtf8Mark) ? kUtf8Mark : std::string_view();
    for (size_t i = 0; i < m_names.size(); ++i) {
        m_out += i == 0 ? "" : std::string(1, m_separator);
        addField({m_names[i].data(), std::ssize(m_names[i]), false});
    }
    m_out += m_lineEnd;
    return {};
}

/// Go to the next record that is a row. Returns false at the end.
Result<bool, MergeError> TableMerger::takeRecord(Part &part)
{
    RecordReader &records = part.text.records();
    for (;;) {
        const auto more = records.next();
        if (!more) {
            return faultOfRecord(more.fault(), records.line());
        }
        const auto fields = records.fields();
        if (!*more || fields.size() == part.names.size()) {
            return *more;
        }
        const bool isEmptyLine = fields.size() == 1 && fields[0].size == 0 && !fields[0].isQuoted;
        if (!isEmptyLine) {
            return Fault{MergeError::Damaged,
                         u"line %1 has %2 fields, but the header has %3"_s.arg(
                             QString::number(records.line()), QString::number(fields.size()),
                             QString::number(part.names.size()))};
        }
    }
}

/// In quotes if they were there, because "" is not the same as an empty field, or if they are
/// needed.
void TableMerger::addField(const Field &field)
{
    const std::array<char, 4> special{m_separator, '"', '\r', '\n'};
    const std::string_view text = field.view();
    if (!field.isQuoted &&
        text.find_first_of({special.data(), special.size()}) == std::string_view::npos) {
        m_out += text;
        return;
    }
    m_out += '"';
    for (const char c : text) {
        m_out.append(c == '"' ? 2 : 1, c);
    }
    m_out += '"';
}

/// The last record of a part may have no line end.
void TableMerger::endLine(std::string_view record)
{
    if (!record.ends_with('\n')) {
        m_out += m_lineEnd;
    }
}

/// `columns` as of columnsIn().
void TableMerger::addRecord(const Part &part, const std::vector<int> &columns)
{
    const RecordReader &records = part.text.records();
    if (columns.empty()) {
        m_out += records.record();
        endLine(records.record());
        return;
    }
    for (size_t i = 0; i < columns.size(); ++i) {
        if (i > 0) {
            m_out += m_separator;
        }
        if (columns[i] != kNoField) {
            addField(records.fields()[static_cast<size_t>(columns[i])]);
        }
    }
    m_out += m_lineEnd;
}

/// Compares the encoding of a part, which has been read, with that of the parts before it.
Result<void, MergeError> TableMerger::checkEncoding(const Part &part)
{
    const bool isOther = part.text.text().hasInvalidUtf8();
    const Bytes bytes = isOther ? Bytes::Other : m_isAscii ? Bytes::Ascii : Bytes::Utf8;
    if (m_bytes == Bytes::Ascii) {
        m_bytes = bytes;
    } else if (bytes != Bytes::Ascii && bytes != m_bytes) {
        return Fault{MergeError::Different,
                     isOther ? u"its text is not UTF-8, but that of a part before it is"_s
                             : u"its text is UTF-8, but that of a part before it is not"_s};
    }
    return {};
}

Result<void, MergeError> TableMerger::flush(ByteSink &sink)
{
    m_isAscii = m_isAscii && isAsciiText(m_out);
    auto written = write(m_out, sink);
    m_out.clear();
    return written;
}

Result<qint64, MergeError> TableMerger::copyPart(ByteSource &source, ByteSink &sink)
{
    const auto part = open(source);
    if (!part) {
        return part.fault();
    }
    const auto columns = columnsIn(**part);
    if (!columns) {
        return columns.fault();
    }
    m_isAscii = isAsciiText((*part)->headerBytes);
    for (qint64 rows = 0;; ++rows) {
        const auto more = takeRecord(**part);
        if (!more) {
            return more.fault();
        }
        if (*more) {
            addRecord(**part, *columns);
        }
        if (!*more || m_out.size() >= kOutBytes) {
            if (const auto written = flush(sink); !written) {
                return written.fault();
            }
        }
        if (!*more) {
            const auto checked = checkEncoding(**part);
            return checked ? Result<qint64, MergeError>(rows) : checked.fault();
        }
    }
}

Result<void, MergeError> TableMerger::finish(ByteSink &sink)
{
    return flush(sink);
}

} // namespace corvanta::csv
