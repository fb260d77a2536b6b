// The records of defined names (MS-XLS, 2.4.150, 2.4.105, 2.4.271; little-endian):
//
//   NAME         flags 2, key 1, name length 1, formula bytes 2, unused 2, sheet 2 (from 1; 0 is
//                all), 4 unused, name (BIFF 8: with its flags), tokens of the formula
//   SUPBOOK 8    sheets 2, 0401 for this workbook | a name
//   EXTERNSHEET 8  count 2, then book 2, first sheet 2, last sheet 2
//
// Tokens of one cell or area, in three classes (bits 5 and 6):
//   BIFF 8: 3A, ranges 2, row 2, column 2 | 3B, range 2, rows 2 2, columns 2 2
//   BIFF 5: 3A, book 2, 8 unused, sheets 2 2, row 2, column 1 | 3B, ..., rows 2 2, columns 1 1; the
//   book is negative for this workbook. The upper 2 bits of rows or columns are flags.
#include "codecs/xls/defined_names.h"

#include "base/bytes.h"

#include <algorithm>

namespace corvanta::xls {

namespace {

constexpr quint16 kFunction = 0x0002;
constexpr quint16 kMacro = 0x0008;
constexpr quint16 kBuiltIn = 0x0020;
constexpr quint8 kCellToken = 0x1A; // without its class
constexpr quint8 kAreaToken = 0x1B;
constexpr quint8 kClassBits = 0x60;
constexpr quint16 kRowBits5 = 0x3FFF;
constexpr quint16 kColumnBits = 0x00FF;

/// The names of built-in names by their numbers, as newer workbooks write them.
constexpr std::array<const char *, 14> kBuiltInNames = {
    "Consolidate_Area", "Auto_Open",       "Auto_Close",   "Extract",        "Database",
    "Criteria",         "Print_Area",      "Print_Titles", "Recorder",       "Data_Form",
    "Auto_Activate",    "Auto_Deactivate", "Sheet_Title",  "_FilterDatabase"};

/// The token without its class, which does not matter for an area.
quint8 tokenOf(const QByteArray &tokens)
{
    return static_cast<quint8>(static_cast<quint8>(tokens.front()) & ~kClassBits & 0x7F);
}

bool hasTokenClass(const QByteArray &tokens)
{
    return !tokens.isEmpty() && (static_cast<quint8>(tokens.front()) & kClassBits) != 0;
}

quint16 u16At(const QByteArray &tokens, qsizetype offset)
{
    return loadLE<quint16>(tokens.constData() + offset);
}

/// Writers may give the corners of an area in any order.
sheet::CellArea ordered(int row1, int row2, int column1, int column2)
{
    return {std::min(row1, row2), std::max(row1, row2), std::min(column1, column2),
            std::max(column1, column2)};
}

/// A built-in name is stored as one character, its number.
QString builtInName(const QString &stored)
{
    const size_t number = stored.isEmpty() ? kBuiltInNames.size() : stored.front().unicode();
    return number < kBuiltInNames.size()
               ? QStringLiteral("_xlnm.%1").arg(QLatin1String(kBuiltInNames[number]))
               : stored;
}

} // namespace

void DefinedNames::take(RecordReader &reader, const Record &record, const TextReader &rules)
{
    if (rules.biff() < Biff::V5) {
        return;
    }
    if (record.id == kName) {
        takeName(reader, record, rules);
    } else if (record.id == kSupBook) {
        takeSupBook(record);
    } else if (record.id == kExternSheet && rules.biff() == Biff::V8) {
        takeExternSheet(reader, record);
    }
}

void DefinedNames::takeName(RecordReader &reader, const Record &record, const TextReader &rules)
{
    constexpr qint64 kHeaderBytes = 14;
    constexpr qint64 kMaxTokenBytes = 21;
    if (record.bytes < kHeaderBytes) {
        return;
    }
    const auto flags = loadLE<quint16>(record.data);
    const qint64 nameLength = record.data[3];
    const auto formulaBytes = loadLE<quint16>(record.data + 4);
    const auto sheet1 = loadLE<quint16>(record.data + 8);
    ContinuedBytes in(reader, record, kHeaderBytes);
    std::u16string name;
    rules.append(in, nameLength, &name);
    Stored stored{QString::fromStdU16String(name), sheet1 - 1, {}};
    if ((flags & kBuiltIn) != 0) {
        stored.name = builtInName(stored.name);
    }
    if (formulaBytes <= kMaxTokenBytes) { // more is not a single area
        QByteArray kept;
        stored.tokens = in.bytes(formulaBytes, &kept).toByteArray();
    }
    if ((flags & (kFunction | kMacro)) != 0) {
        stored.name.clear(); // but it keeps its number
    }
    m_names.push_back(std::move(stored));
}

void DefinedNames::takeSupBook(const Record &record)
{
    constexpr quint16 kThisBook = 0x0401;
    m_isThisBook.push_back(record.bytes >= 4 && loadLE<quint16>(record.data + 2) == kThisBook);
}

void DefinedNames::takeExternSheet(RecordReader &reader, const Record &record)
{
    ContinuedBytes in(reader, record);
    for (int left = in.u16(); left > 0 && !in.atEnd(); --left) {
        // The fields are read in the order of the list: the language guarantees it for braces.
        m_ranges.push_back(SheetRange{in.u16(), in.u16(), in.u16()});
    }
}

bool DefinedNames::setArea8(const QByteArray &tokens, sheet::DefinedName *name) const
{
    const bool isCell = tokenOf(tokens) == kCellToken && tokens.size() == 7;
    if (!isCell && (tokenOf(tokens) != kAreaToken || tokens.size() != 11)) {
        return false;
    }
    const size_t number = u16At(tokens, 1);
    if (number >= m_ranges.size() || m_ranges[number].first != m_ranges[number].last ||
        m_ranges[number].book >= m_isThisBook.size() || !m_isThisBook[m_ranges[number].book]) {
        return false;
    }
    name->sheet = m_ranges[number].first;
    const int row = u16At(tokens, 3);
    const int column = u16At(tokens, isCell ? 5 : 7) & kColumnBits;
    name->area = ordered(row, isCell ? row : u16At(tokens, 5), column,
                         isCell ? column : u16At(tokens, 9) & kColumnBits);
    return true;
}

bool DefinedNames::setArea5(const QByteArray &tokens, sheet::DefinedName *name)
{
    const bool isCell = tokenOf(tokens) == kCellToken && tokens.size() == 18;
    if (!isCell && (tokenOf(tokens) != kAreaToken || tokens.size() != 21)) {
        return false;
    }
    if (loadLE<qint16>(tokens.constData() + 1) >= 0 || u16At(tokens, 11) != u16At(tokens, 13)) {
        return false;
    }
    name->sheet = u16At(tokens, 11);
    const int row = u16At(tokens, 15) & kRowBits5;
    const int column = static_cast<quint8>(tokens[isCell ? 17 : 19]);
    name->area = ordered(row, isCell ? row : u16At(tokens, 17) & kRowBits5, column,
                         isCell ? column : static_cast<quint8>(tokens[20]));
    return true;
}

std::vector<sheet::DefinedName> DefinedNames::resolve(Biff biff, size_t sheets) const
{
    std::vector<sheet::DefinedName> names;
    for (const Stored &stored : m_names) {
        sheet::DefinedName name{stored.name, stored.scope, -1, {}};
        if (hasTokenClass(stored.tokens)) {
            const bool isSet =
                biff == Biff::V8 ? setArea8(stored.tokens, &name) : setArea5(stored.tokens, &name);
            if (isSet && static_cast<size_t>(name.sheet) >= sheets) {
                name.sheet = -1;
                name.area.reset();
            }
        }
        if (!name.name.isEmpty()) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

} // namespace corvanta::xls
