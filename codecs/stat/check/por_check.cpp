// The dictionary of an SPSS portable file (.por): characters, in lines of 80 that are padded with
// blanks.
//
//   5 x 40 bytes   the same text in several character sets
//   256 bytes      the file's byte of each portable character
//   8 bytes        SPSSPORT
//   A text text    version, date and time; then records, each a tag and values:
//     1 2 3 6  text       4 5  number     7  width, name (text), 6 numbers
//     8 9 A    a missing value            B  two       C  label (text)
//     D        count, names, count, count x (value, text)
//     E        count, texts               F  the rows follow
//   number         digits of base 30 until "/", or "*."    text   its length (number), its bytes
//
// Public description: the portable file format in the developer documentation of GNU PSPP.
#include "codecs/stat/check/checked_reader.h"
#include "codecs/stat/check/header_check.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace corvanta::stat {

namespace {

constexpr int kLineBytes = 80;
constexpr int kDigitsAt = 64; // in the table of characters
constexpr int kMaxMissing = 3;
constexpr qint64 kMaxTextBytes = 20000;

class PorCheck
{
public:
    explicit PorCheck(ByteSource &source)
        : m_in(source)
    {
    }
    Result<void, Error> run();
    /// See distinctPorStart().
    QByteArray distinctStart();

private:
    // Functions that return a bool return false at a fault.
    bool readCharacters();
    bool checkRecord(char tag);
    bool checkVariableCount();
    bool checkVariable();
    bool checkMissing(char tag);
    bool checkValueLabels();
    bool checkMissingCount();
    bool fail(const QString &reason);

    uchar nextByte();
    char next() { return m_characters[nextByte()]; }
    QByteArray number();
    qint64 count();
    QByteArray text();
    void skipValue(bool isText);
    void skipMissing(char tag);
    void skipTexts(qint64 n);

    CheckedReader m_in;
    std::array<char, 256> m_characters{}; // those of numbers and tags, by the file's byte; 0: other
    std::array<uchar, 256> m_table{};     // the file's byte of each portable character
    std::array<qint64, 256> m_places{};   // of these bytes in the file
    uchar m_blank = 0;
    int m_column = 0;
    int m_blanks = 0; // left at the end of a line
    qint64 m_announced = 0;
    qint64 m_variables = 0;
    int m_missing = 0;     // values of the last variable
    bool m_isText = false; // the last variable
    std::unordered_map<QByteArray, bool> m_isTextOf;
    QString m_reason;
};

bool PorCheck::fail(const QString &reason)
{
    m_reason = reason;
    return false;
}

Result<void, Error> PorCheck::run()
{
    if (!readCharacters()) { // another file: the library says so
        return m_in.hasFailed() ? Result<void, Error>(Fault{Error::Unreadable})
                                : Result<void, Error>();
    }
    next(); // the version
    text();
    text();
    for (char tag = next(); tag != 'F'; tag = next()) {
        const bool isRight = m_in.isGood() && m_reason.isEmpty() && checkRecord(tag);
        if (m_in.hasFailed()) {
            return Fault{Error::Unreadable};
        }
        if (!isRight || !m_in.isGood() || !m_reason.isEmpty()) {
            const QString reason =
                m_reason.isEmpty() ? QStringLiteral("the file ends in the dictionary") : m_reason;
            return Fault{Error::Damaged, reason, m_in.position()};
        }
    }
    return {};
}

/// The table of characters and the mark after it.
bool PorCheck::readCharacters()
{
    constexpr int kTextBytes = 200;
    constexpr char kCharacters[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    constexpr int kBlankAt = 126;
    constexpr int kPointAt = 127;
    constexpr int kStarAt = 137;
    constexpr int kSlashAt = 142;
    for (int i = 0; i < kTextBytes; ++i) {
        nextByte();
    }
    for (size_t i = 0; i < m_table.size(); ++i) {
        m_table[i] = nextByte();
        m_places[i] = m_in.position() - 1;
    }
    m_blank = m_table[kBlankAt];
    m_characters[m_table[kPointAt]] = '.';
    m_characters[m_table[kStarAt]] = '*';
    m_characters[m_table[kSlashAt]] = '/';
    for (size_t i = sizeof kCharacters - 1; i-- > 0;) { // "0" is last: it fills empty places
        m_characters[m_table[kDigitsAt + i]] = kCharacters[i];
    }
    QByteArray mark;
    for (int i = 0; i < 8; ++i) {
        mark += next();
    }
    return m_in.isGood() && mark == "SPSSPORT";
}

/// The first digit fills empty places of the table, as the library expects: here it also replaces
/// the bytes that occur before.
QByteArray PorCheck::distinctStart()
{
    if (!readCharacters()) {
        return {};
    }
    const qint64 end = m_places.back() + 1;
    m_in.seek(0);
    QByteArray start = m_in.bytes(end);
    std::array<bool, 256> isKnown{};
    for (size_t i = kDigitsAt; i < m_table.size() && m_in.isGood(); ++i) {
        // A place without this byte is a line end, which blanks precede.
        char &byte = start[m_places[i]];
        if (isKnown[m_table[i]] && static_cast<uchar>(byte) == m_table[i]) {
            byte = static_cast<char>(m_table[kDigitsAt]);
        }
        isKnown[m_table[i]] = true;
    }
    return start;
}

/// The next byte without line ends. A short line continues with blanks.
uchar PorCheck::nextByte()
{
    if (m_blanks > 0) {
        --m_blanks;
        return m_blank;
    }
    const auto byte = m_in.number<quint8>();
    if (byte != '\r' && byte != '\n') {
        ++m_column;
        return byte;
    }
    if (byte == '\r' && m_in.number<quint8>() != '\n') {
        fail(QStringLiteral("a line ends in a carriage return alone"));
        return 0;
    }
    m_blanks = std::max(kLineBytes - m_column, 0);
    m_column = 0;
    return m_in.isGood() ? nextByte() : 0;
}

/// The characters of a number; "*" for none.
QByteArray PorCheck::number()
{
    constexpr qsizetype kMaxChars = 100;
    QByteArray digits;
    digits += next();
    digits += next();
    if (digits == "*.") {
        return digits.left(1);
    }
    while (!digits.endsWith('/') && digits.size() < kMaxChars && m_in.isGood()) {
        digits += next();
    }
    if (!digits.endsWith('/')) {
        fail(QStringLiteral("a number has more than %1 characters").arg(kMaxChars));
    }
    digits.chop(1);
    return digits;
}

/// Read a number that counts something; fails for any other value.
qint64 PorCheck::count()
{
    constexpr int kBase = 30;
    bool isCount = false;
    const qint64 value = number().toLongLong(&isCount, kBase);
    if (!isCount || value < 0 || value > std::max(m_in.remaining(), kMaxTextBytes)) {
        fail(QStringLiteral("the dictionary has a wrong count"));
        return 0;
    }
    return value;
}

QByteArray PorCheck::text()
{
    const qint64 bytes = count();
    if (bytes > kMaxTextBytes) {
        fail(QStringLiteral("a text has %1 bytes").arg(bytes));
        return {};
    }
    QByteArray text;
    for (qint64 i = 0; i < bytes && m_in.isGood(); ++i) {
        text += static_cast<char>(nextByte());
    }
    return text;
}

/// A value of a variable: texts and numbers end in different ways.
void PorCheck::skipValue(bool isText)
{
    static_cast<void>(isText ? text() : number());
}

bool PorCheck::checkRecord(char tag)
{
    switch (tag) {
    case '1':
    case '2':
    case '3':
    case '6':
        text();
        return true;
    case '4':
        return checkVariableCount();
    case '5':
        number();
        return true;
    case '7':
        return checkVariable();
    case '8':
    case '9':
    case 'A':
    case 'B':
        return checkMissing(tag);
    case 'C':
        text();
        return m_variables > 0 || fail(QStringLiteral("a label precedes the variables"));
    case 'D':
        return checkValueLabels();
    case 'E':
        skipTexts(count());
        return true;
    default:
        return fail(QStringLiteral("the dictionary has an unknown record"));
    }
}

bool PorCheck::checkVariableCount()
{
    const bool isFirst = m_announced == 0;
    m_announced = count();
    return isFirst || fail(QStringLiteral("the number of variables occurs twice"));
}

bool PorCheck::checkVariable()
{
    constexpr int kFormatNumbers = 6;
    constexpr qint64 kMaxWidth = 255;
    const qint64 width = count();
    const QByteArray name = text();
    for (int i = 0; i < kFormatNumbers; ++i) {
        number();
    }
    m_isText = width > 0;
    m_isTextOf[name] = m_isText;
    m_missing = 0;
    ++m_variables;
    if (m_variables > m_announced) {
        return fail(QStringLiteral("there are more variables than the %1 that it announces")
                        .arg(m_announced));
    }
    return width <= kMaxWidth || fail(QStringLiteral("a variable has the width %1").arg(width));
}

/// Only a range with both ends, tag B, has two values in the file.
void PorCheck::skipMissing(char tag)
{
    skipValue(m_isText);
    if (tag == 'B') {
        skipValue(m_isText);
    }
}

/// Tag 8 is a single value. The other tags are ranges, whose ends are two values.
bool PorCheck::checkMissing(char tag)
{
    skipMissing(tag);
    m_missing = tag == '8' ? m_missing + 1 : 2;
    return checkMissingCount();
}

/// The library has room for three values per variable, and writes a fourth beyond its array.
bool PorCheck::checkMissingCount()
{
    return (m_variables > 0 || fail(QStringLiteral("a missing value precedes the variables"))) &&
           (m_missing <= kMaxMissing ||
            fail(QStringLiteral("a variable has more than %1 missing values").arg(kMaxMissing)));
}

/// The values are texts if the variables of the record are; the variables precede the values.
bool PorCheck::checkValueLabels()
{
    bool isText = false;
    const qint64 variables = count();
    for (qint64 i = 0; i < variables && m_in.isGood(); ++i) {
        const QByteArray name = text();
        const auto found = m_isTextOf.find(name);
        isText = found != m_isTextOf.end() ? found->second : isText;
    }
    const qint64 labels = count();
    for (qint64 i = 0; i < labels && m_in.isGood(); ++i) {
        skipValue(isText);
        text();
    }
    return true;
}

/// The lines of a document, which the library does not take apart.
void PorCheck::skipTexts(qint64 n)
{
    for (qint64 i = 0; i < n && m_in.isGood(); ++i) {
        text();
    }
}

} // namespace

Result<void, Error> checkPor(ByteSource &source)
{
    return PorCheck(source).run();
}

QByteArray distinctPorStart(ByteSource &source)
{
    return PorCheck(source).distinctStart();
}

} // namespace corvanta::stat
