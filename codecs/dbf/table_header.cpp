// Header of dBase III and later, FoxPro and Visual FoxPro; numbers are little-endian:
//
//   0 version   1 date   4 u32 records   8 u16 header length   10 u16 record length   ... 32 in all
//   (level 7: 68 in all, with the name of the language driver)
//
// Descriptors, up to one that starts with 0D:
//   32 bytes:           0 name (11)   11 type   12 -   16 length   17 decimals
//   48 bytes, level 7:  0 name (32)   32 type   33 length   34 decimals
//
// dBase II (version 02):
//   0 version   1 u16 records   3 date   6 u16 record length; 32 descriptors or a 0D behind the
//   last: 16 bytes:           0 name (11)   11 type   12 length   13 u16 address   15 decimals
//   records start at 521
#include "codecs/dbf/table_header.h"

#include "base/bytes.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace corvanta::dbf {

namespace {

constexpr int kFixedBytes = 32;
constexpr int kFixedBytesLevel7 = 68;
constexpr int kDbase2FixedBytes = 8;
constexpr int kDbase2HeaderBytes = 521;
constexpr char kTerminator = 0x0D;
constexpr uchar kMemoBit = 0x80;
constexpr uchar kDbase2 = 0x02;
constexpr uchar kLevelMask = 0x07;
constexpr uchar kLevel7 = 4;

/// Where a descriptor keeps what.
struct DescriptorLayout
{
    int bytes;
    int nameBytes;
    int typeAt;
    int lengthAt;
    int decimalsAt;
};
constexpr DescriptorLayout kUsual{32, 11, 11, 16, 17};
constexpr DescriptorLayout kLevel7Layout{48, 32, 32, 33, 34};
constexpr DescriptorLayout kDbase2Layout{16, 11, 11, 12, 15};

bool isFoxProVersion(uchar version)
{
    constexpr uchar kVersions[] = {0x02, 0x30, 0x31, 0xF5, 0xFB};
    return std::find(std::begin(kVersions), std::end(kVersions), version) != std::end(kVersions);
}

/// What becomes of a type; `isSkipped` and `isRefused` stand for the types without a column.
struct TypeRule
{
    CellType cell = CellType::Text;
    Conversion conversion = Conversion::Text;
    bool isSkipped = false;
    bool isRefused = false;
};

TypeRule ruleOf(char type, bool isFoxPro)
{
    switch (type) {
    case 'C':
        return {CellType::Text, Conversion::Text};
    case 'M':
        return {CellType::Text, Conversion::Memo};
    case 'D':
    case 'F':
    case 'N':
        return {CellType::Text, Conversion::Digits};
    case 'L':
        return {CellType::Key, Conversion::Logical};
    case 'I':
        return {CellType::Double, Conversion::Integer};
    case '0':
    case 'O':
        return {CellType::Double, Conversion::Double};
    case 'B':
        return {.cell = CellType::Double, .conversion = Conversion::Double, .isRefused = !isFoxPro};
    case '@':
    case 'T':
        return {CellType::Text, Conversion::Timestamp};
    case '+':
        return {CellType::Key, Conversion::Key};
    case 'G':
    case 'P':
    case 'Y':
        return {.isRefused = true};
    default:
        return {.isSkipped = true};
    }
}

/// All fields in file order, skipped ones too, with offsets as if every length were its low byte.
std::vector<Field> readFields(QByteArrayView descriptors, const DescriptorLayout &layout)
{
    std::vector<Field> fields;
    for (qsizetype at = 0; at + layout.bytes <= descriptors.size(); at += layout.bytes) {
        const char *const descriptor = descriptors.data() + at;
        if (descriptor[0] == kTerminator || descriptor[0] == '\0') {
            break;
        }
        Field field;
        field.name =
            QByteArray(descriptor, qstrnlen(descriptor, static_cast<size_t>(layout.nameBytes)));
        field.type = descriptor[layout.typeAt];
        field.length = static_cast<uchar>(descriptor[layout.lengthAt]);
        fields.push_back(field);
    }
    return fields;
}

/// Place the fields one after the other; the bytes of a record, deletion flag included.
int placeFields(std::vector<Field> &fields)
{
    int offset = 1;
    for (Field &field : fields) {
        field.offset = offset;
        offset += field.length;
    }
    return offset;
}

/// Clipper and FoxPro keep the high byte of a long text's length in the place of the decimals.
/// Others leave garbage there, so that this counts only where the record's length asks for it.
void tryLongTexts(std::vector<Field> &fields, QByteArrayView descriptors,
                  const DescriptorLayout &layout, int recordBytes)
{
    std::vector<Field> longer = fields;
    for (size_t i = 0; i < longer.size(); ++i) {
        if (longer[i].type == 'C') {
            const qsizetype at = static_cast<qsizetype>(i) * layout.bytes + layout.decimalsAt;
            longer[i].length += static_cast<uchar>(descriptors[at]) << 8;
        }
    }
    if (placeFields(longer) == recordBytes) {
        fields = std::move(longer);
    }
}

Fault<Error> badHeader(const QString &why, qint64 offset)
{
    return {Error::BadHeader, why, offset};
}

/// Take over the fields that become columns.
Result<void, Error> chooseColumns(const std::vector<Field> &fields, TableHeader *header)
{
    for (Field field : fields) {
        const TypeRule rule = ruleOf(field.type, header->isFoxPro);
        if (rule.isRefused) {
            return Fault<Error>{Error::UnsupportedField,
                                QLatin1Char(field.type) + QString::fromLatin1(field.name)};
        }
        if (!rule.isSkipped) {
            field.cell = rule.cell;
            field.conversion = rule.conversion;
            header->fields.push_back(field);
        }
    }
    return {};
}

Result<TableHeader, Error> parse(QByteArrayView bytes, int fixedBytes,
                                 const DescriptorLayout &layout, TableHeader header)
{
    const QByteArrayView descriptors = bytes.sliced(std::min<qsizetype>(fixedBytes, bytes.size()));
    std::vector<Field> fields = readFields(descriptors, layout);
    int used = placeFields(fields);
    if (used != header.recordBytes && layout.bytes == kUsual.bytes) {
        tryLongTexts(fields, descriptors, layout, header.recordBytes);
        used = placeFields(fields);
    }
    if (used > header.recordBytes) {
        const bool looksLevel7 = (header.version & kLevelMask) == kLevel7 && !header.isLevel7;
        return badHeader(
            looksLevel7 ? QStringLiteral("it looks like a dBase 7 table (see the parameter level7)")
                        : QStringLiteral("its fields do not fit its record length"),
            10);
    }
    auto chosen = chooseColumns(fields, &header);
    if (!chosen) {
        return chosen.fault();
    }
    return header;
}

/// A table of version 02 may have the layout of dBase II or the later one. It is dBase II when its
/// descriptors, read that way, make up its record length.
std::optional<TableHeader> parseDbase2(QByteArrayView bytes)
{
    if (bytes.size() < kDbase2HeaderBytes) {
        return std::nullopt;
    }
    TableHeader header;
    header.version = kDbase2;
    header.isFoxPro = true;
    header.recordCount = loadLE<quint16>(bytes.data() + 1);
    header.headerBytes = kDbase2HeaderBytes;
    header.recordBytes = loadLE<quint16>(bytes.data() + 6);
    std::vector<Field> fields = readFields(bytes.sliced(kDbase2FixedBytes), kDbase2Layout);
    if (fields.empty() || placeFields(fields) != header.recordBytes) {
        return std::nullopt;
    }
    auto parsed = parse(bytes.first(kDbase2HeaderBytes), kDbase2FixedBytes, kDbase2Layout, header);
    return parsed ? std::optional(*parsed) : std::nullopt;
}

/// Read on until `bytes` has `n` bytes, as far as the file goes.
Result<void, Error> extend(ByteSource &source, QByteArray *bytes, qsizetype n)
{
    const qsizetype have = bytes->size();
    if (have >= n) {
        return {};
    }
    bytes->resize(n);
    const qint64 got = readFully(source, bytes->data() + have, n - have);
    bytes->truncate(have + std::max<qint64>(got, 0));
    if (got < 0) {
        return Fault<Error>{Error::Unreadable, {}, have};
    }
    return {};
}

Fault<Error> shortHeader(qint64 have)
{
    return {Error::ShortHeader, QStringLiteral("it ends within its header"), have};
}

} // namespace

bool TableHeader::hasMemoFields() const
{
    return std::any_of(fields.begin(), fields.end(),
                       [](const Field &field) { return field.conversion == Conversion::Memo; });
}

bool TableHeader::announcesMemoFile() const
{
    return (version & kMemoBit) != 0 || isFoxPro;
}

Result<TableHeader, Error> readTableHeader(ByteSource &source, bool isLevel7)
{
    QByteArray bytes;
    auto read = extend(source, &bytes, kFixedBytes);
    if (read && bytes.startsWith(static_cast<char>(kDbase2))) {
        read = extend(source, &bytes, kDbase2HeaderBytes);
        const auto dbase2 = read ? parseDbase2(bytes) : std::nullopt;
        if (dbase2) {
            return *dbase2;
        }
    }
    if (!read) {
        return read.fault();
    }
    if (bytes.size() < kFixedBytes) {
        return shortHeader(bytes.size());
    }
    TableHeader header;
    header.version = static_cast<uchar>(bytes[0]);
    header.isFoxPro = isFoxProVersion(header.version);
    header.isLevel7 = isLevel7;
    header.recordCount = loadLE<quint32>(bytes.constData() + 4);
    header.headerBytes = loadLE<quint16>(bytes.constData() + 8);
    header.recordBytes = loadLE<quint16>(bytes.constData() + 10);
    const int fixedBytes = isLevel7 ? kFixedBytesLevel7 : kFixedBytes;
    if (header.headerBytes < fixedBytes || header.recordBytes == 0) {
        return badHeader(QStringLiteral("its header or record length is not possible"), 8);
    }
    read = extend(source, &bytes, header.headerBytes);
    if (!read) {
        return read.fault();
    }
    if (bytes.size() < header.headerBytes) {
        return shortHeader(bytes.size());
    }
    if (bytes.size() > header.headerBytes && !source.seek(header.headerBytes)) {
        return Fault<Error>{Error::Unreadable, {}, header.headerBytes};
    }
    return parse(QByteArrayView(bytes).first(header.headerBytes), fixedBytes,
                 isLevel7 ? kLevel7Layout : kUsual, header);
}

} // namespace corvanta::dbf
