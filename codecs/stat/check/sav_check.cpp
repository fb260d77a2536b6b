// The dictionary of an SPSS system file (.sav), as far as it has sizes. All integers are int32
// unless noted, in the byte order of the layout code 2 or 3:
//
//   0    "$FL2" or "$FL3"        64  layout code    68  nominal case size    ... 176 bytes
//   2    type, has label, missing values, 2 formats, name (8), [n, label (n, padded to 4)],
//        [doubles of the missing values]
//   3    count, [value (8), n (uint8), label (padded: n + 1 to 8)]; then a record 4: count, indexes
//   6    lines, lines x 80 bytes
//   7    subtype, size, count, size x count bytes
//   999  0; the rows follow
//
// Public description: the system file format in the developer documentation of GNU PSPP.
#include "codecs/stat/check/checked_reader.h"
#include "codecs/stat/check/header_check.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace corvanta::stat {

namespace {

constexpr qint64 kHeaderBytes = 176;
constexpr qint64 kLayoutAt = 64;
// Longer ones do not occur; the limits keep products and sums in 32 bits.
constexpr qint64 kMaxLabelBytes = qint64(64) * 1024;
constexpr qint64 kMaxRecordBytes = qint64(16) * 1024 * 1024;

/// Subtypes of extension records, type 7.
enum : qint32 { Machine = 3, LongNames = 13, VeryLongTexts = 14, LongLabels = 21 };

class SavCheck
{
public:
    explicit SavCheck(ByteSource &source)
        : m_in(source)
    {
    }
    Result<void, Error> run();
    bool hasLongUtf8Texts() const { return m_hasLongTexts && m_isUtf8; }

private:
    bool readByteOrder();
    bool checkRecord(qint32 type);
    bool checkVariable();
    bool checkValueLabels();
    bool checkExtension();
    bool checkSubtype(qint32 subtype, const QByteArray &data);
    void noteTexts(qint32 subtype, const QByteArray &data);
    bool checkNames(qint32 subtype, const QByteArray &data);
    bool checkLongLabels(const QByteArray &data) const;
    bool declaresUtf8(const QByteArray &data) const;
    bool fail(const QString &reason);

    CheckedReader m_in;
    qint64 m_elements = 0; // records of type 2: 8 bytes of a row each
    bool m_isBigEndian = false;
    bool m_hasLongTexts = false; // of more than one segment
    bool m_isUtf8 = false;       // as the record of the machine says
    QString m_reason;
};

bool SavCheck::fail(const QString &reason)
{
    m_reason = reason;
    return false;
}

Result<void, Error> SavCheck::run()
{
    constexpr qint32 kEnd = 999;
    if (!readByteOrder()) { // another file: the library says so
        return {};
    }
    for (qint32 type = m_in.number<qint32>(); type != kEnd; type = m_in.number<qint32>()) {
        const bool isRight = m_in.isGood() && checkRecord(type);
        if (m_in.hasFailed()) {
            return Fault{Error::Unreadable};
        }
        if (!isRight || !m_in.isGood()) {
            const QString reason =
                m_reason.isEmpty() ? QStringLiteral("the file ends in the dictionary") : m_reason;
            return Fault{Error::Damaged, reason, m_in.position()};
        }
    }
    return {};
}

bool SavCheck::readByteOrder()
{
    const QByteArray magic = m_in.bytes(4);
    m_in.seek(kLayoutAt);
    const auto layout = m_in.number<qint32>();
    m_isBigEndian = layout != 2 && layout != 3;
    m_in.setBigEndian(m_isBigEndian);
    m_in.seek(kHeaderBytes);
    return m_in.isGood() && (magic == "$FL2" || magic == "$FL3");
}

bool SavCheck::checkRecord(qint32 type)
{
    constexpr qint64 kLineBytes = 80;
    switch (type) {
    case 2:
        return checkVariable();
    case 3:
        return checkValueLabels();
    case 6:
        m_in.skip(m_in.number<qint32>() * kLineBytes);
        return true;
    case 7:
        return checkExtension();
    default:
        return fail(QStringLiteral("the dictionary has a record of the unknown type %1").arg(type));
    }
}

bool SavCheck::checkVariable()
{
    constexpr qint32 kMaxWidth = 255;
    constexpr qint32 kMaxMissing = 3;
    const auto width = m_in.number<qint32>();
    const auto hasLabel = m_in.number<qint32>();
    const auto missing = m_in.number<qint32>();
    constexpr qint64 kFormatsAndName = 16;
    m_in.skip(kFormatsAndName);
    if (width < -1 || width > kMaxWidth || missing < -kMaxMissing || missing > kMaxMissing) {
        return fail(QStringLiteral("a variable has the width %1 and %2 missing values")
                        .arg(QString::number(width), QString::number(missing)));
    }
    if (m_elements == 0 && width < 0) {
        return fail(QStringLiteral("the first variable continues another one"));
    }
    if (hasLabel != 0) {
        const auto bytes = m_in.number<quint32>();
        if (bytes > kMaxLabelBytes) {
            return fail(QStringLiteral("a label of a variable has %1 bytes").arg(bytes));
        }
        m_in.skip((qint64(bytes) + 3) / 4 * 4);
    }
    m_in.skip(qint64(std::abs(missing)) * 8);
    ++m_elements;
    return true;
}

bool SavCheck::checkValueLabels()
{
    constexpr qint64 kShortest = 16; // a value and an empty label
    const auto count = m_in.number<qint32>();
    if (count < 0 || count > m_in.remaining() / kShortest) {
        return fail(QStringLiteral("a record announces %1 value labels").arg(count));
    }
    for (qint32 i = 0; i < count && m_in.isGood(); ++i) {
        m_in.skip(8);
        m_in.skip((m_in.number<quint8>() + 8LL) / 8 * 8 - 1);
    }
    const auto type = m_in.number<qint32>();
    const auto variables = m_in.number<qint32>();
    if (type != 4 || variables < 0 || variables > m_in.remaining() / 4) {
        return fail(QStringLiteral("value labels have no list of variables"));
    }
    for (qint32 i = 0; i < variables; ++i) {
        const auto index = m_in.number<qint32>();
        if (index < 1 || index > m_elements) {
            return fail(QStringLiteral("value labels belong to the variable %1").arg(index));
        }
    }
    return true;
}

bool SavCheck::checkExtension()
{
    const auto subtype = m_in.number<qint32>();
    const auto size = m_in.number<quint32>();
    const auto count = m_in.number<quint32>();
    const quint64 bytes = static_cast<quint64>(size) * count;
    if (bytes > static_cast<quint64>(kMaxRecordBytes)) {
        return fail(QStringLiteral("an extension record has %1 bytes").arg(bytes));
    }
    const QByteArray data = m_in.bytes(static_cast<qint64>(bytes));
    return m_in.isGood() && checkSubtype(subtype, data);
}

/// The texts between the TABs. Writers pad the record with blanks or bytes 0.
QByteArrayList entriesOf(const QByteArray &text)
{
    QByteArrayList entries = text.split('\t');
    while (!entries.isEmpty() && entries.last().trimmed().replace('\0', "").isEmpty()) {
        entries.removeLast();
    }
    return entries;
}

/// NAME=VALUE, neither of them empty.
bool isNameWithValue(const QByteArray &entry)
{
    const qsizetype at = entry.indexOf('=');
    return at >= 1 && at + 1 != entry.size();
}

/// Whether `text` consists of entries NAME=VALUE with a TAB between them; the library reads on
/// after an entry that has no value.
bool isListOfNames(const QByteArray &text)
{
    const QByteArrayList entries = entriesOf(text);
    return !entries.isEmpty() && std::ranges::all_of(entries, isNameWithValue);
}

/// What hasLongUtf8Texts() depends on.
void SavCheck::noteTexts(qint32 subtype, const QByteArray &data)
{
    m_hasLongTexts = m_hasLongTexts || subtype == VeryLongTexts;
    m_isUtf8 = m_isUtf8 || (subtype == Machine && declaresUtf8(data));
}

bool SavCheck::checkNames(qint32 subtype, const QByteArray &data)
{
    const bool hasNames = subtype == LongNames || subtype == VeryLongTexts;
    return !hasNames || isListOfNames(data) ||
           fail(QStringLiteral("the record of long names is not a list of names"));
}

/// The records whose content the library takes apart. All others are skipped by their size.
bool SavCheck::checkSubtype(qint32 subtype, const QByteArray &data)
{
    noteTexts(subtype, data);
    return checkNames(subtype, data) &&
           (subtype != LongLabels || checkLongLabels(data) ||
            fail(QStringLiteral("the record of labels of long texts has wrong lengths")));
}

/// Eight numbers, of which the last is the code page.
bool SavCheck::declaresUtf8(const QByteArray &data) const
{
    constexpr qint64 kCodePageAt = 28;
    constexpr qint32 kUtf8 = 65001;
    constexpr qint32 kUtf8OfIbm = 1208;
    MemorySource source(data);
    CheckedReader in(source);
    in.setBigEndian(m_isBigEndian);
    in.seek(kCodePageAt);
    const auto page = in.number<qint32>();
    return in.isGood() && (page == kUtf8 || page == kUtf8OfIbm);
}

/// Per variable: n, name (n), width, count, then count times: n, value (n), n, label (n).
bool SavCheck::checkLongLabels(const QByteArray &data) const
{
    MemorySource source(data);
    CheckedReader in(source);
    in.setBigEndian(m_isBigEndian);
    while (in.isGood() && in.remaining() > 0) {
        in.skip(in.number<qint32>());
        in.number<qint32>();
        const auto count = in.number<qint32>();
        for (qint32 i = 0; i < count && in.isGood(); ++i) {
            in.skip(in.number<qint32>());
            in.skip(in.number<qint32>());
        }
    }
    return in.isGood();
}

} // namespace

Result<void, Error> checkSav(ByteSource &source)
{
    return SavCheck(source).run();
}

bool hasLongUtf8Texts(ByteSource &source)
{
    SavCheck check(source);
    return check.run() && check.hasLongUtf8Texts();
}

} // namespace corvanta::stat
