// The part "<strls>" of a Stata file, and the references of rows:
//
//   text       "GSO", variable (uint32), row (uint64; version 117: uint32), type (uint8: 129 bytes,
//              130 text with a zero at its end), size (uint32), bytes
//   reference  8 bytes: variable and row. 117: uint32 and uint32, 118: uint16 and 6 bytes,
//              119: 3 bytes and 5 bytes. All zeros: the empty text
//
// The ReadStat library writes, and expects, the references of 118 in files of version 119.
//
// Public description: "help dta" of Stata.
#include "codecs/stat/long_texts.h"

#include <algorithm>
#include <array>

namespace corvanta::stat {

namespace {

constexpr char kBegin[] = "<strls>";
constexpr char kEnd[] = "</strls>";
constexpr quint64 kBeginBytes = sizeof kBegin - 1;
constexpr quint64 kEndBytes = sizeof kEnd - 1;
constexpr int kFirstWideRow = 118; // version
// Bytes of the variable in references of versions 118 and 119.
constexpr int kShortVariable = 2;
constexpr int kLongVariable = 3;
constexpr int kReferenceBytes = 8;
constexpr char kTextWithZero = char(130);
constexpr quint16 kLongText = 32768;
/// Texts per entry of the index. Few, so that a search reads few headers.
constexpr qint64 kStride = 32;

/// Bytes of a value of this type in a row.
int bytesOfType(quint16 type)
{
    switch (type) {
    case kLongText:
    case 65526: // double
        return kReferenceBytes;
    case 65527: // float
    case 65528: // long
        return 4;
    case 65529: // int
        return 2;
    case 65530: // byte
        return 1;
    default:
        return type; // a text of this many bytes
    }
}

/// Numbers of any width up to eight bytes, in the byte order of the file.
quint64 numberOf(const char *bytes, int n, bool isBigEndian)
{
    quint64 value = 0;
    for (int i = 0; i < n; ++i) {
        value = value << 8 | static_cast<uchar>(bytes[isBigEndian ? i : n - 1 - i]);
    }
    return value;
}

/// Bytes of the variable in a reference.
int variableBytesOf(int release)
{
    if (release < kFirstWideRow) {
        return 4;
    }
    return release == kFirstWideRow ? kShortVariable : kLongVariable;
}

} // namespace

std::unique_ptr<LongTexts> LongTexts::of(ByteSource &source)
{
    CheckedReader in(source);
    const auto header = readStataHeader(in);
    if (!header) {
        return nullptr;
    }
    std::unique_ptr<LongTexts> texts(new LongTexts(source, *header)); // the constructor is private
    texts->readTypes(in, *header);
    const auto &offsets = texts->m_offsets;
    const bool hasAny = std::any_of(offsets.begin(), offsets.end(), [](int at) { return at >= 0; });
    return hasAny ? std::move(texts) : nullptr;
}

/// Offsets are used only after check().
LongTexts::LongTexts(ByteSource &source, const StataHeader &header)
    : m_release(header.release)
    , m_isBigEndian(header.isBigEndian)
    , m_variableBytes(variableBytesOf(header.release))
    , m_begin(static_cast<qint64>(header.map[StataHeader::kLongTexts] + kBeginBytes))
    , m_end(static_cast<qint64>(header.map[StataHeader::kAfterLongTexts] - kEndBytes))
    , m_input(source)
{
}

void LongTexts::readTypes(CheckedReader &in, const StataHeader &header)
{
    in.seek(static_cast<qint64>(header.map[StataHeader::kTypes]));
    in.skip(static_cast<qint64>(sizeof("<variable_types>") - 1));
    const QByteArray types = in.bytes(header.variables * qint64(sizeof(quint16)));
    for (qsizetype i = 0; i < types.size(); i += sizeof(quint16)) {
        const auto type = static_cast<quint16>(numberOf(types.constData() + i, 2, m_isBigEndian));
        m_offsets.push_back(type == kLongText ? static_cast<int>(m_rowBytes) : -1);
        m_rowBytes += bytesOfType(type);
    }
}

int LongTexts::offsetInRow(int variable) const
{
    const auto at = static_cast<size_t>(variable);
    return at < m_offsets.size() ? m_offsets[at] : -1;
}

Result<void, Error> LongTexts::check()
{
    const auto has = [this](qint64 at, QByteArrayView tag) {
        QByteArray found(tag.size(), '\0');
        return m_input.seekTo(at) && m_input.read(found.data(), found.size()) == found.size() &&
               found == tag;
    };
    if (m_begin <= m_end && has(m_begin - qint64(kBeginBytes), kBegin) && has(m_end, kEnd)) {
        return {};
    }
    if (m_input.hasFailed()) {
        return Fault{Error::Unreadable};
    }
    return Fault{Error::Damaged,
                 QStringLiteral("its long texts (strL) are not where its header says")};
}

/// The library reads the tag before the texts, then that after them.
void LongTexts::attachTo(LibrarySource *library)
{
    m_library = library;
    library->hide(m_begin, m_end);
}

LongTexts::Key LongTexts::keyOf(const char *reference) const
{
    return {numberOf(reference + m_variableBytes, kReferenceBytes - m_variableBytes, m_isBigEndian),
            static_cast<quint32>(numberOf(reference, m_variableBytes, m_isBigEndian))};
}

std::optional<LongTexts::Stored> LongTexts::storedAt(qint64 at)
{
    const int rowBytes = m_release < kFirstWideRow ? 4 : 8;
    constexpr int kVariableAt = 3;
    constexpr int kRowAt = kVariableAt + 4;
    const int typeAt = kRowAt + rowBytes;
    const int headerBytes = typeAt + 5;
    std::array<char, 20> header{};
    const bool isRead =
        m_input.seekTo(at) && m_input.read(header.data(), headerBytes) == headerBytes;
    const char *const bytes = header.data();
    Stored stored;
    stored.key = {numberOf(bytes + kRowAt, rowBytes, m_isBigEndian),
                  static_cast<quint32>(numberOf(bytes + kVariableAt, 4, m_isBigEndian))};
    const auto size = static_cast<qint64>(numberOf(bytes + typeAt + 1, 4, m_isBigEndian));
    const bool hasZero = bytes[typeAt] == kTextWithZero && size > 0;
    stored.text = {at + headerBytes, size - (hasZero ? 1 : 0)};
    stored.end = at + headerBytes + size;
    if (!isRead || !std::equal(bytes, bytes + kVariableAt, "GSO") || stored.end > m_end) {
        m_fault = {m_input.hasFailed() ? Error::Unreadable : Error::Damaged,
                   QStringLiteral("the long text (strL) at offset %1 is damaged").arg(at)};
        return std::nullopt;
    }
    return stored;
}

bool LongTexts::indexEach(qint64 stride)
{
    m_index.clear();
    m_stride = stride;
    bool isSorted = true;
    Key last;
    qint64 count = 0;
    for (qint64 at = m_begin; at < m_end; ++count) {
        const auto stored = storedAt(at);
        if (!stored) {
            return false;
        }
        isSorted = isSorted && last < stored->key;
        last = stored->key;
        if (count % stride == 0) {
            m_index.push_back({stored->key, at});
        }
        at = stored->end;
    }
    return isSorted;
}

/// Stata sorts the texts. In a file whose texts are in another order, all of them are indexed.
bool LongTexts::makeIndex()
{
    if (!indexEach(kStride) && !m_fault) {
        indexEach(1);
        std::stable_sort(m_index.begin(), m_index.end(),
                         [](const IndexEntry &a, const IndexEntry &b) { return a.key < b.key; });
    }
    return !m_fault;
}

/// Look at the texts from the last entry of the index that is not after the key.
std::optional<LongTexts::Stored> LongTexts::search(const Key &key)
{
    const auto after = std::upper_bound(
        m_index.begin(), m_index.end(), key,
        [](const Key &wanted, const IndexEntry &entry) { return wanted < entry.key; });
    qint64 at = after == m_index.begin() ? m_end : std::prev(after)->at;
    for (qint64 i = 0; i < m_stride && at < m_end; ++i) {
        const auto stored = storedAt(at);
        if (!stored || stored->key == key) {
            return stored;
        }
        at = stored->end;
    }
    return std::nullopt;
}

/// As search(). The first text that is found decides the form of the references.
std::optional<LongTexts::Stored> LongTexts::searchFirst(const char *reference)
{
    auto stored = search(keyOf(reference));
    if (!stored && !m_fault && m_variableBytes == kLongVariable) {
        m_variableBytes = kShortVariable;
        stored = search(keyOf(reference));
        m_variableBytes = stored ? kShortVariable : kLongVariable;
    }
    return stored;
}

std::optional<LongTexts::Place> LongTexts::find(int offset)
{
    // The library reads a row in one call.
    const auto row = m_library->lastRead();
    if (row.size() != m_rowBytes || m_fault || (m_stride == 0 && !makeIndex())) {
        return std::nullopt;
    }
    const char *const reference = row.data() + offset;
    const Key key = keyOf(reference);
    if (key == Key()) {
        return Place();
    }
    if (key != m_last.key) {
        // Most texts are in the order of the rows.
        const bool isFirst = m_last.end == 0;
        const bool hasNext = !isFirst && m_last.end < m_end;
        auto stored = hasNext ? storedAt(m_last.end) : std::nullopt;
        if (!stored || stored->key != key) {
            stored = isFirst ? searchFirst(reference) : search(key);
        }
        if (!stored) {
            return std::nullopt;
        }
        m_last = *stored;
    }
    return m_last.text;
}

/// The fault is kept for the caller, whose callbacks return only success.
bool LongTexts::read(const Place &place, char *out)
{
    if (m_input.seekTo(place.at) && m_input.read(out, place.bytes) == place.bytes) {
        return true;
    }
    m_fault = {Error::Unreadable};
    return false;
}

} // namespace corvanta::stat
