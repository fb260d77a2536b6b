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

constexpr int kDbase2HeaderBytes = 521;
constexpr char kTerminator = 0x0D;
constexpr uchar kMemoBit = 0x80;
constexpr uchar kDbase2 = 0x02;

/// Where the descriptors start, and where a descriptor keeps what.
struct Layout
{
    int fixedBytes; // in front of the descriptors
    int bytes;
    int nameBytes;
    int typeAt;
    int lengthAt;
    int decimalsAt;
};
constexpr Layout kUsual{32, 32, 11, 11, 16, 17};
constexpr Layout kLevel7{68, 48, 32, 32, 33, 34};
constexpr Layout kDbase2Layout{8, 16, 11, 11, 12, 15};

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

/// What the descriptors say in one layout.
struct DescriptorList
{
    std::vector<Field> fields; ///< in file order, skipped ones too
    int recordBytes = 0;       ///< that the fields make up
};

/// All lengths are taken for single bytes.
DescriptorList readDescriptors(QByteArrayView header, const Layout &layout)
{
    DescriptorList descriptors;
    for (qsizetype at = layout.fixedBytes; at + layout.bytes <= header.size(); at += layout.bytes) {
        const char *const descriptor = header.data() + at;
        if (descriptor[0] == kTerminator || descriptor[0] == '\0') {
            break;
        }
        Field field;
        field.name =
            QByteArray(descriptor, qstrnlen(descriptor, static_cast<size_t>(layout.nameBytes)));
        field.type = descriptor[layout.typeAt];
        field.length = static_cast<uchar>(descriptor[layout.lengthAt]);
        descriptors.fields.push_back(field);
    }
    descriptors.recordBytes = placeFields(descriptors.fields);
    return descriptors;
}

/// Clipper and FoxPro keep the high byte of a long text's length in the place of the decimals.
/// Others leave garbage there, so that this counts only where the record's length asks for it.
DescriptorList withLongTexts(DescriptorList descriptors, QByteArrayView header,
                             const Layout &layout)
{
    qsizetype at = layout.fixedBytes + layout.decimalsAt;
    for (Field &field : descriptors.fields) {
        if (field.type == 'C') {
            field.length += static_cast<uchar>(header[at]) << 8;
        }
        at += layout.bytes;
    }
    descriptors.recordBytes = placeFields(descriptors.fields);
    return descriptors;
}

/// The descriptors in the way that makes up the record's length, if there is one.
DescriptorList chooseDescriptors(QByteArrayView header, const Layout &layout, int recordBytes)
{
    DescriptorList descriptors = readDescriptors(header, layout);
    if (descriptors.recordBytes != recordBytes && &layout == &kUsual) {
        DescriptorList longer = withLongTexts(descriptors, header, layout);
        if (longer.recordBytes == recordBytes) {
            return longer;
        }
    }
    return descriptors;
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
    const DescriptorList descriptors =
        readDescriptors(bytes.first(kDbase2HeaderBytes), kDbase2Layout);
    if (descriptors.fields.empty() || descriptors.recordBytes != header.recordBytes ||
        !chooseColumns(descriptors.fields, &header)) {
        return std::nullopt;
    }
    return header;
}

/// The layout that is asked for, but the other one when only that makes up the record's length: who
/// reads a table need not know which program wrote it.
Result<TableHeader, Error> parse(QByteArrayView bytes, TableHeader header)
{
    const auto fits = [&](const DescriptorList &descriptors) {
        return !descriptors.fields.empty() && descriptors.recordBytes == header.recordBytes;
    };
    const auto layoutOf = [](bool isLevel7) -> const Layout & {
        return isLevel7 ? kLevel7 : kUsual;
    };
    DescriptorList descriptors =
        chooseDescriptors(bytes, layoutOf(header.isLevel7), header.recordBytes);
    if (!fits(descriptors)) {
        DescriptorList other =
            chooseDescriptors(bytes, layoutOf(!header.isLevel7), header.recordBytes);
        if (fits(other)) {
            descriptors = std::move(other);
            header.isLevel7 = !header.isLevel7;
        }
    }
    if (bytes.size() < layoutOf(header.isLevel7).fixedBytes) {
        return badHeader(QStringLiteral("its header or record length is not possible"), 8);
    }
    if (descriptors.recordBytes > header.recordBytes) {
        return badHeader(QStringLiteral("its fields do not fit its record length"), 10);
    }
    auto chosen = chooseColumns(descriptors.fields, &header);
    if (!chosen) {
        return chosen.fault();
    }
    return header;
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
    auto read = extend(source, &bytes, kUsual.fixedBytes);
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
    if (bytes.size() < kUsual.fixedBytes) {
        return shortHeader(bytes.size());
    }
    TableHeader header;
    header.version = static_cast<uchar>(bytes[0]);
    header.isFoxPro = isFoxProVersion(header.version);
    header.isLevel7 = isLevel7;
    header.recordCount = loadLE<quint32>(bytes.constData() + 4);
    header.headerBytes = loadLE<quint16>(bytes.constData() + 8);
    header.recordBytes = loadLE<quint16>(bytes.constData() + 10);
    if (header.headerBytes < kUsual.fixedBytes || header.recordBytes == 0) {
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
    return parse(QByteArrayView(bytes).first(header.headerBytes), header);
}

} // namespace corvanta::dbf
