// The records of a workbook that are read here (MS-XLS, 2.4; little-endian, by version):
//
//   BOF         version 2, stream type 2
//   BOUNDSHEET  5: offset 4, visibility 1, kind 1, name length 1, name; 8: the name is a BIFF 8
//   text SHEETHDR    4: bytes of the sheet 4, name length 1, name; the sheet's stream follows
//   CODEPAGE    number 2
//   DATEMODE    1904 2
//   FORMAT      2, 3: length 1, code; 4: unused 2, length 1, code; 5: number 2, length 1, code;
//               8: number 2, length 2, code as BIFF 8 text. Up to 4 they are numbered from 0
//   XF          number of the format: 2: at 2, 6 bits; 3, 4: at 1, 1 byte; 5, 8: at 2, 2 bytes
//   FILEPASS    2 to 5: key 2, hash 2; 8: kind 2, 1 is RC4, and its version 2
#include "codecs/xls/globals.h"

#include "base/bytes.h"
#include "codecs/sheet/number_format.h"
#include "codecs/xls/defined_names.h"

#include <array>
#include <unordered_map>

namespace corvanta::xls {

using sheet::NumberForm;
using sheet::WorkbookError;

namespace {

constexpr quint8 kFormatBits = 0x3F;

/// A number in a record; 0 beyond its end.
quint16 u16At(const Record &record, qint64 offset)
{
    return record.bytes >= offset + 2 ? loadLE<quint16>(record.data + offset) : quint16{0};
}

quint8 u8At(const Record &record, qint64 offset)
{
    return record.bytes > offset ? record.data[offset] : quint8{0};
}

/// The built-in formats of BIFF 2 end with seven of dates and times and one of both.
NumberForm formOfBuiltIn2(int id)
{
    if (id < 12 || id > 20) {
        return NumberForm::General;
    }
    return id < 16 ? NumberForm::Date : (id < 20 ? NumberForm::Time : NumberForm::DateTime);
}

/// The kind in a BOUNDSHEET record.
sheet::SheetKind kindOf(quint8 type)
{
    switch (type) {
    case 1:
        return sheet::SheetKind::Macro;
    case 2:
        return sheet::SheetKind::Chart;
    default: // 6 is a module of macros, which has no cells either
        return type == 6 ? sheet::SheetKind::Macro : sheet::SheetKind::Worksheet;
    }
}

/// The kind of the only sheet of an older file, from its BOF record.
sheet::SheetKind kindOfStream(quint16 type)
{
    if (type == kChartStream) {
        return sheet::SheetKind::Chart;
    }
    return type == kMacroStream ? sheet::SheetKind::Macro : sheet::SheetKind::Worksheet;
}

/// The upper bits are not used; 3 is not defined and hides the sheet as 2 does.
sheet::SheetVisibility visibilityOf(quint8 state)
{
    constexpr std::array kStates = {sheet::SheetVisibility::Visible, sheet::SheetVisibility::Hidden,
                                    sheet::SheetVisibility::VeryHidden,
                                    sheet::SheetVisibility::VeryHidden};
    return kStates[state & 3U];
}

/// What a BOUNDSHEET record says before the name of its sheet.
SheetPlace placeIn(const Record &record)
{
    SheetPlace place{{}, loadLE<quint32>(record.data)};
    place.info.visibility = visibilityOf(record.data[4]);
    place.info.kind = kindOf(record.data[5]);
    return place;
}

QString encryptionOf(const Record &record, Biff biff)
{
    if (biff != Biff::V8 || u16At(record, 0) == 0) {
        return QStringLiteral("XOR obfuscation");
    }
    return u16At(record, 2) == 1 ? QStringLiteral("RC4") : QStringLiteral("RC4 CryptoAPI");
}

Fault<WorkbookError> encrypted(const Record &record, Biff biff)
{
    return {WorkbookError::Encrypted,
            QStringLiteral("it is encrypted (%1); save it without a password")
                .arg(encryptionOf(record, biff))};
}

/// Collects the globals, record by record.
class Collector
{
public:
    Collector(RecordReader &reader, Biff biff)
        : m_reader(reader)
        , m_rules(biff, 0)
    {
        m_globals.biff = biff;
    }

    void take(const Record &record);
    Globals finish(std::optional<SheetPlace> single);

private:
    void takeBoundSheet(const Record &record);
    void takeSheetHeader(const Record &record);
    void addSheet(const Record &record, qint64 nameOffset, SheetPlace place);
    void takeFormat(const Record &record);
    void addFormat(int id, ContinuedBytes &in, qint64 length);
    NumberForm formOf(int format) const;

    RecordReader &m_reader;
    TextReader m_rules;
    Globals m_globals;
    DefinedNames m_names;
    std::unordered_map<int, NumberForm> m_formats; // those with a FORMAT record
    std::vector<int> m_xfs;                        // format of each
};

void Collector::take(const Record &record)
{
    switch (record.id) {
    case kCodePage:
        m_globals.codePage = u16At(record, 0);
        m_rules = TextReader(m_globals.biff, m_globals.codePage);
        break;
    case kDateMode:
        m_globals.uses1904 = u16At(record, 0) == 1;
        break;
    case kFormat2:
    case kFormat:
        takeFormat(record);
        break;
    case kXf:
        m_xfs.push_back(u16At(record, 2));
        break;
    case kXf3:
    case kXf4:
        m_xfs.push_back(u8At(record, 1));
        break;
    case kXf2:
        m_xfs.push_back(u8At(record, 2) & kFormatBits);
        break;
    case kBoundSheet:
        takeBoundSheet(record);
        break;
    case kSheetHeader:
        takeSheetHeader(record);
        break;
    case kSst:
        m_globals.sharedTexts = record.offset;
        break;
    default:
        m_names.take(m_reader, record, m_rules);
        break;
    }
}

void Collector::takeBoundSheet(const Record &record)
{
    constexpr qint64 kNameOffset = 6;
    if (m_globals.biff >= Biff::V5 && record.bytes > kNameOffset) {
        addSheet(record, kNameOffset, placeIn(record));
    }
}

/// The length of the name is at `nameOffset`. The record is no longer valid afterwards.
void Collector::addSheet(const Record &record, qint64 nameOffset, SheetPlace place)
{
    ContinuedBytes in(m_reader, record, nameOffset);
    place.info.name = m_rules.shortName(in);
    m_globals.sheets.push_back(std::move(place));
}

/// A sheet of a workspace. Its stream begins after this record and is skipped here.
void Collector::takeSheetHeader(const Record &record)
{
    constexpr qint64 kNameOffset = 4;
    if (m_globals.biff != Biff::V4 || record.bytes <= kNameOffset) {
        return;
    }
    const qint64 bytes = loadLE<quint32>(record.data);
    const qint64 begin = m_reader.position();
    addSheet(record, kNameOffset, {{}, begin});
    m_globals.isWorkspace = true;
    m_reader.seek(std::min(begin + bytes, m_reader.size()));
}

void Collector::takeFormat(const Record &record)
{
    const bool hasNumber = m_globals.biff >= Biff::V5;
    const int id = hasNumber ? u16At(record, 0) : static_cast<int>(m_formats.size());
    // The number, or in BIFF 4 two unused bytes, precede the length.
    ContinuedBytes in(m_reader, record, record.id == kFormat ? 2 : 0);
    addFormat(id, in, m_globals.biff == Biff::V8 ? in.u16() : in.u8());
}

/// `in` is at the first of the `length` characters of the code.
void Collector::addFormat(int id, ContinuedBytes &in, qint64 length)
{
    std::u16string code;
    m_rules.append(in, length, &code);
    m_formats[id] = sheet::formOfCode(code);
}

/// Numbers without a record are formats that every program knows.
NumberForm Collector::formOf(int format) const
{
    const auto found = m_formats.find(format);
    if (found != m_formats.end()) {
        return found->second;
    }
    return m_globals.biff == Biff::V2 ? formOfBuiltIn2(format) : sheet::formOfBuiltIn(format);
}

/// `single` is the sheet of a stream without globals.
Globals Collector::finish(std::optional<SheetPlace> single)
{
    for (const int format : m_xfs) {
        m_globals.forms.ofXf.push_back(formOf(format));
    }
    for (int format = 0; format <= kFormatBits; ++format) {
        m_globals.forms.ofFormat.push_back(formOf(format));
    }
    if (single && !m_globals.isWorkspace) {
        m_globals.sheets = {*std::move(single)};
    }
    m_globals.names = m_names.resolve(m_globals.biff, m_globals.sheets.size());
    return std::move(m_globals);
}

} // namespace

Biff versionOf(const Record &record)
{
    constexpr quint16 kBiff8 = 0x0600;
    switch (record.id) {
    case kBof2:
        return Biff::V2;
    case kBof3:
        return Biff::V3;
    case kBof4:
        return Biff::V4;
    default:
        return u16At(record, 0) == kBiff8 ? Biff::V8 : Biff::V5;
    }
}

Fault<WorkbookError> readFailed(qint64 offset)
{
    return {WorkbookError::ReadFailed, QStringLiteral("a read failed"), offset};
}

quint16 streamType(const Record &record)
{
    return u16At(record, 2);
}

sheet::WorkbookResult<Globals> readGlobals(RecordReader &reader, qint64 offset)
{
    Record record;
    reader.seek(offset);
    const bool isBegun = reader.next(&record) && isBof(record.id);
    if (reader.stop() == RecordReader::Stop::ReadFailed) {
        return readFailed(offset);
    }
    if (!isBegun) {
        return Fault{WorkbookError::NotAWorkbook, QStringLiteral("it is not a legacy workbook")};
    }
    // The record is no longer valid once the next one is read.
    const Biff biff = versionOf(record);
    const quint16 type = streamType(record);
    Collector collector(reader, biff);
    int depth = 1;
    while (depth > 0 && reader.next(&record)) {
        if (record.id == kFilePass) {
            return encrypted(record, biff);
        }
        // The only sheet of an older file may hold charts, which have streams of their own.
        depth += isBof(record.id) ? 1 : (record.id == kEof ? -1 : 0);
        if (depth == 1) {
            collector.take(record);
        }
    }
    if (reader.stop() == RecordReader::Stop::ReadFailed) {
        return readFailed(reader.position());
    }
    if (type == kGlobals || type == kWorkspace) {
        if (depth > 0) {
            return Fault{WorkbookError::Damaged,
                         QStringLiteral("it is damaged: the list of sheets has no end"),
                         reader.position()};
        }
        return collector.finish({});
    }
    return collector.finish(SheetPlace{{QStringLiteral("Sheet 1"), kindOfStream(type)}, offset});
}

} // namespace corvanta::xls
