// The header of a table (public sources: the dBase file descriptions of the vendors' manuals).
// Numbers are little-endian.
//
// dBase III and later, FoxPro and Visual FoxPro:
//   offset  bytes  content
//        0      1  version
//        1      3  date of the last change
//        4      4  number of records
//        8      2  header length
//       10      2  record length
//       12         reserved; up to byte 32, in level 7 up to byte 68 with the language driver's
//       name; byte 29 is a mark of the encoding
//
// Then descriptors, one per field, ended by a byte 0D:
//   layout   bytes  name      type  length  decimals
//   usual       32  0 (11)      11      16        17
//   level 7     48  0 (32)      32      33        34
//
// In Visual FoxPro byte 18 has flags: 1 a system column, 2 the value can be null. The system column
// of type 0 holds the null flags of a record, in the order of the fields, the lowest bit first: for
// V and Q a bit that says that the last byte is the length, then for each that can be null a bit.
//
// dBase II (version 02); records start at offset 521:
//   offset  bytes  content
//        0      1  version
//        1      2  number of records
//        3      3  date of the last change
//        6      2  record length
//        8         descriptors of 16 bytes, 32 or ended by 0D: 0 name (11), 11 type, 12 length,
//                  13 u16 address, 15 decimals
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
constexpr qsizetype kFlagsAt = 18; // in a usual descriptor
constexpr uchar kSystemColumn = 1;
constexpr uchar kCanBeNull = 2;

/// Offsets of one layout. nameBytes and the *At members are offsets in a descriptor.
struct Layout
{
    int fixedBytes; // before the descriptors
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

/// From the version with auto-increment to that with texts of varying length.
bool isVisualFoxProVersion(uchar version)
{
    return version >= 0x30 && version <= 0x32;
}

/// How fields of a type are converted. A skipped field has no column; a refused field makes the
/// table unreadable.
struct TypeRule
{
    CellType cell = CellType::Text;
    Conversion conversion = Conversion::Text;
    bool isSkipped = false;
    bool isRefused = false;
};

TypeRule ruleOf(char type, const TableHeader &header, const TableOptions &options)
{
    const bool isFoxPro = header.isFoxPro;
    const bool readsAllTypes = options.readsAllTypes;
    const bool isIso = options.isoValues;
    switch (type) {
    case 'C':
        return {CellType::Text, Conversion::Text};
    case 'V':
        return {.conversion = Conversion::Varying, .isSkipped = !header.isVisualFoxPro};
    case 'M':
        return {CellType::Text, Conversion::Memo};
    case 'D':
        return {CellType::Text, isIso ? Conversion::IsoDate : Conversion::Digits};
    case 'F':
    case 'N':
        return {CellType::Text, isIso ? Conversion::Number : Conversion::Digits};
    case 'L':
        return isIso ? TypeRule{CellType::Text, Conversion::Truth}
                     : TypeRule{CellType::Key, Conversion::Logical};
    case 'I':
        return {CellType::Double, Conversion::Integer};
    case '0':
    case 'O':
        return {CellType::Double, Conversion::Double};
    case 'B':
        return {.cell = CellType::Double,
                .conversion = Conversion::Double,
                .isSkipped = !isFoxPro && readsAllTypes,
                .isRefused = !isFoxPro && !readsAllTypes};
    case '@':
    case 'T':
        return {CellType::Text, isIso ? Conversion::IsoTimestamp : Conversion::Timestamp};
    case '+':
        return {CellType::Key, Conversion::Key};
    case 'G':
    case 'P':
        return {.isSkipped = readsAllTypes, .isRefused = !readsAllTypes};
    case 'Y':
        return {.cell = CellType::Double,
                .conversion = Conversion::Currency,
                .isRefused = !readsAllTypes};
    default:
        return {.isSkipped = true};
    }
}

/// Compute the offsets of the fields. Returns the record length, with the deletion flag.
int placeFields(std::vector<Field> &fields)
{
    int offset = 1;
    for (Field &field : fields) {
        field.offset = offset;
        offset += field.length;
    }
    return offset;
}

/// The descriptors of a header, read in one layout.
struct DescriptorList
{
    std::vector<Field> fields; ///< In file order, with skipped fields.
    int recordBytes = 0;       ///< Total length of the fields and the deletion flag.
};

/// Read the descriptors. Treats every length as a single byte.
DescriptorList readDescriptors(QByteArrayView header, const Layout &layout)
{
    DescriptorList descriptors;
    for (qsizetype at = layout.fixedBytes; at + layout.bytes <= header.size(); at += layout.bytes) {
        const char *const descriptor = header.data() + at;
        if (descriptor[0] == kTerminator || descriptor[0] == '\0') {
            break;
        }
        Field field;
        const size_t nameBytes = qstrnlen(descriptor, static_cast<size_t>(layout.nameBytes));
        field.name = QByteArray(descriptor, static_cast<qsizetype>(nameBytes));
        field.type = descriptor[layout.typeAt];
        field.length = static_cast<uchar>(descriptor[layout.lengthAt]);
        field.flags = &layout == &kUsual ? static_cast<uchar>(descriptor[kFlagsAt]) : uchar(0);
        descriptors.fields.push_back(field);
    }
    descriptors.recordBytes = placeFields(descriptors.fields);
    return descriptors;
}

/// The descriptors with long texts. Clipper and FoxPro store the high byte of a text's length in
/// the decimals byte. Other programs leave garbage there, so use this only if it matches the record
/// length.
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

/// The descriptors in the form that matches the record length, or else in the usual form.
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

/// Give a field of Visual FoxPro its bits in the null flags, of which `*bits` are in use. Returns
/// false for the column that holds the flags.
bool takeNullBits(Field *field, int *bits, TableHeader *header)
{
    if (field->type == '0' && (field->flags & kSystemColumn) != 0) {
        header->nullFlagsAt = field->offset;
        header->nullFlagsBytes = field->length;
        return false;
    }
    if (field->type == 'V' || field->type == 'Q') {
        field->lengthBit = (*bits)++;
    }
    if ((field->flags & kCanBeNull) != 0) {
        field->nullBit = (*bits)++;
    }
    return true;
}

/// Add the fields that become columns to the header.
Result<void, Error> chooseColumns(const std::vector<Field> &fields, const TableOptions &options,
                                  TableHeader *header)
{
    int nullBits = 0;
    for (Field field : fields) {
        if (header->isVisualFoxPro && !takeNullBits(&field, &nullBits, header)) {
            continue;
        }
        const TypeRule rule = ruleOf(field.type, *header, options);
        if (rule.isRefused) {
            return Fault<Error>{Error::UnsupportedField,
                                QLatin1Char(field.type) + QString::fromLatin1(field.name)};
        }
        if (rule.isSkipped) {
            header->skippedFields.add([&] {
                return QStringLiteral("'%1' of type '%2'")
                    .arg(QString::fromLatin1(field.name), QString(QLatin1Char(field.type)));
            });
            continue;
        }
        field.cell = rule.cell;
        field.conversion = rule.conversion;
        header->fields.push_back(field);
    }
    return {};
}

/// Parse the header of dBase II. A table of version 02 may have that layout or the later one. It is
/// dBase II if its descriptors match its record length; otherwise returns nothing.
std::optional<TableHeader> parseDbase2(QByteArrayView bytes, const TableOptions &options)
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
    header.fieldBytes = descriptors.recordBytes;
    if (descriptors.fields.empty() || descriptors.recordBytes != header.recordBytes ||
        !chooseColumns(descriptors.fields, options, &header)) {
        return std::nullopt;
    }
    return header;
}

const Layout &layoutOf(bool isLevel7)
{
    return isLevel7 ? kLevel7 : kUsual;
}

/// Parse the descriptors in the layout of `header`, or in the other one if only that matches the
/// record length, and correct `header` then. The user need not know which program wrote the table.
DescriptorList descriptorsOf(QByteArrayView bytes, TableHeader *header)
{
    const auto fits = [&](const DescriptorList &descriptors) {
        return !descriptors.fields.empty() && descriptors.recordBytes == header->recordBytes;
    };
    DescriptorList descriptors =
        chooseDescriptors(bytes, layoutOf(header->isLevel7), header->recordBytes);
    if (fits(descriptors)) {
        return descriptors;
    }
    DescriptorList other =
        chooseDescriptors(bytes, layoutOf(!header->isLevel7), header->recordBytes);
    if (fits(other)) {
        header->isLevel7 = !header->isLevel7;
        return other;
    }
    return descriptors;
}

/// Complete the header with the fields that its descriptors describe.
Result<TableHeader, Error> parse(QByteArrayView bytes, const TableOptions &options,
                                 TableHeader header)
{
    const DescriptorList descriptors = descriptorsOf(bytes, &header);
    if (bytes.size() < layoutOf(header.isLevel7).fixedBytes) {
        return badHeader(QStringLiteral("its header or record length is not possible"), 8);
    }
    if (descriptors.recordBytes > header.recordBytes) {
        return badHeader(QStringLiteral("its fields do not fit its record length"), 10);
    }
    header.fieldBytes = descriptors.recordBytes;
    auto chosen = chooseColumns(descriptors.fields, options, &header);
    if (!chosen) {
        return chosen.fault();
    }
    return header;
}

/// Read until `bytes` has `n` bytes or the file ends.
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

namespace {

/// Parse the fixed part of a header, kUsual.fixedBytes bytes.
TableHeader parseFixedPart(const char *bytes, const TableOptions &options)
{
    TableHeader header;
    header.version = static_cast<uchar>(bytes[0]);
    header.isVisualFoxPro = options.readsAllTypes && isVisualFoxProVersion(header.version);
    header.isFoxPro = header.isVisualFoxPro || isFoxProVersion(header.version);
    header.isLevel7 = options.isLevel7;
    header.encodingMark = static_cast<uchar>(bytes[29]);
    header.recordCount = loadLE<quint32>(bytes + 4);
    header.headerBytes = loadLE<quint16>(bytes + 8);
    header.recordBytes = loadLE<quint16>(bytes + 10);
    return header;
}

/// Read a header in the layouts after dBase II. `bytes` has the bytes read so far.
Result<TableHeader, Error> readLaterHeader(ByteSource &source, QByteArray bytes,
                                           const TableOptions &options)
{
    if (bytes.size() < kUsual.fixedBytes) {
        return shortHeader(bytes.size());
    }
    const TableHeader header = parseFixedPart(bytes.constData(), options);
    if (header.headerBytes < kUsual.fixedBytes || header.recordBytes == 0) {
        return badHeader(QStringLiteral("its header or record length is not possible"), 8);
    }
    if (auto read = extend(source, &bytes, header.headerBytes); !read) {
        return read.fault();
    }
    if (bytes.size() < header.headerBytes) {
        return shortHeader(bytes.size());
    }
    // The check for dBase II may have read more than the header.
    if (bytes.size() > header.headerBytes && !source.seek(header.headerBytes)) {
        return Fault<Error>{Error::Unreadable, {}, header.headerBytes};
    }
    return parse(QByteArrayView(bytes).first(header.headerBytes), options, header);
}

} // namespace

Result<TableHeader, Error> readTableHeader(ByteSource &source, const TableOptions &options)
{
    QByteArray bytes;
    auto read = extend(source, &bytes, kUsual.fixedBytes);
    if (read && bytes.startsWith(static_cast<char>(kDbase2))) {
        read = extend(source, &bytes, kDbase2HeaderBytes);
        const auto dbase2 = read ? parseDbase2(bytes, options) : std::nullopt;
        if (dbase2) {
            return *dbase2;
        }
    }
    if (!read) {
        return read.fault();
    }
    return readLaterHeader(source, std::move(bytes), options);
}

} // namespace corvanta::dbf
