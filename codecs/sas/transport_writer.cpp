// A file is a sequence of records of 80 bytes, padded with blanks; integers are big-endian:
//
//   LIBRARY (LIBV8) header, then two records with the program and the dates
//   MEMBER (MEMBV8) header with the size 140 of a descriptor, DSCRPTR (DSCPTV8) header,
//     two records with the name of the table and the dates
//   NAMESTR (NAMSTV8) header with the number of variables, their descriptors, padding
//   LABELV8 header with the number of long labels, the labels, padding     (version 8, if any)
//   OBS header, or OBSV8 header with the number of rows
//   rows of fixed width without gaps, padding
//
// A descriptor (NAMESTR):
//
//     0  2  1: number, 2: text      56  8  format           84  4  position in a row
//     2  2  0                       64  2  its width        88 32  long name (version 8)
//     4  2  width in bytes          66  2  its decimals    120  2  bytes of the label (version 8)
//     6  2  number of the variable  68  4  0               122 18  0
//     8  8  name                    72  8  informat
//    16 40  label                   80  4  0
#include "codecs/sas/transport_writer.h"

#include "base/bytes.h"
#include "base/cell.h"
#include "codecs/sas/ibm_float.h"
#include "codecs/sas/variable_names.h"

#include <algorithm>
#include <cstring>

namespace corvanta::sas {

namespace {

constexpr size_t kRecordBytes = 80;
constexpr size_t kFlushBytes = size_t(256) << 10;
constexpr qsizetype kShortName = 8;
constexpr qsizetype kShortLabel = 40;
constexpr qsizetype kDescriptorBytes = 140;
/// 30 digits of a header that states nothing.
constexpr const char *kNoNumbers = "000000000000000000000000000000";
constexpr const char *kFixedTimeText = "01JAN60:00:00:00";
/// The version of SAS whose files have this form, and the system.
constexpr const char *kProgram = "9.4     CORVANTA";

QByteArray padded(const QByteArray &text, qsizetype width)
{
    return text.leftJustified(width, ' ', true);
}

void append(QByteArray *to, int value)
{
    std::array<char, 2> bytes{};
    storeBE(static_cast<quint16>(value), bytes.data());
    to->append(bytes.data(), bytes.size());
}

bool isDigits(const QByteArray &text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

std::optional<DisplayFormat> DisplayFormat::parse(const QByteArray &text)
{
    constexpr qsizetype kMaxDigits = 4;
    const qsizetype point = text.indexOf('.');
    qsizetype digits = std::max<qsizetype>(point, 0);
    while (digits > 0 && text[digits - 1] >= '0' && text[digits - 1] <= '9') {
        --digits;
    }
    const QByteArray name = text.first(digits);
    const QByteArray decimals = text.mid(point + 1);
    const bool isValid = point >= 0 && name.size() <= kShortName && isDigits(decimals) &&
                         point - digits <= kMaxDigits && decimals.size() <= kMaxDigits;
    if (!isValid) {
        return std::nullopt;
    }
    return DisplayFormat{name.toUpper(), text.mid(digits, point - digits).toUShort(),
                         decimals.toUShort()};
}

TransportWriter::TransportWriter(ByteSink &sink, TransportVersion version, QByteArray tableName,
                                 std::vector<Variable> variables)
    : m_sink(sink)
    , m_version(version)
    , m_tableName(std::move(tableName))
    , m_variables(std::move(variables))
    , m_reports(m_variables.size())
{
    for (const Variable &variable : m_variables) {
        m_rowBytes += static_cast<size_t>(variable.width);
    }
}

void TransportWriter::addText(const QByteArray &text, qsizetype width)
{
    const QByteArray bytes = padded(text, width);
    m_buffer.insert(m_buffer.end(), bytes.begin(), bytes.end());
}

void TransportWriter::padRecord()
{
    const size_t used = (static_cast<size_t>(m_written) + m_buffer.size()) % kRecordBytes;
    m_buffer.insert(m_buffer.end(), used == 0 ? 0 : kRecordBytes - used, ' ');
}

void TransportWriter::addHeader(const char *name, const QByteArray &numbers)
{
    addText("HEADER RECORD*******" + padded(name, 8) + "HEADER RECORD!!!!!!!" + numbers,
            kRecordBytes);
}

void TransportWriter::addLibrary()
{
    addHeader(m_version == TransportVersion::V5 ? "LIBRARY" : "LIBV8", kNoNumbers);
    addText(QByteArray("SAS     SAS     SASLIB  ") + kProgram, 64);
    addText(kFixedTimeText, 16);
    addText(kFixedTimeText, kRecordBytes);
}

void TransportWriter::addMember()
{
    const bool isV5 = m_version == TransportVersion::V5;
    // 140 at the end is the size of a descriptor.
    addHeader(isV5 ? "MEMBER" : "MEMBV8", "000000000000000001600000000140");
    addHeader(isV5 ? "DSCRPTR" : "DSCPTV8", kNoNumbers);
    addText("SAS     " + padded(m_tableName, limitsOf(m_version).name) + "SASDATA " + kProgram, 64);
    addText(kFixedTimeText, 16);
    addText(kFixedTimeText, kRecordBytes);
}

void TransportWriter::addVariable(const Variable &variable, int number, qint64 position)
{
    const DisplayFormat format = DisplayFormat::parse(variable.format).value_or(DisplayFormat());
    QByteArray bytes;
    for (const int value : {variable.isText ? 2 : 1, 0, variable.width, number}) {
        append(&bytes, value);
    }
    // In version 8 these two are the starts of the long ones, for readers of version 5.
    bytes += padded(variable.name, kShortName);
    bytes += padded(cutUtf8(variable.label, kShortLabel), kShortLabel);
    bytes += padded(format.name, kShortName);
    for (const int value : {int(format.width), int(format.decimals), 0, 0}) {
        append(&bytes, value);
    }
    bytes += padded({}, kShortName);
    for (const auto value : {qint64(0), qint64(0), position >> 16, position & 0xFFFF}) {
        append(&bytes, static_cast<int>(value));
    }
    if (m_version == TransportVersion::V8) {
        bytes += padded(variable.name, kMaxNameBytes);
        append(&bytes, static_cast<int>(variable.label.size()));
    }
    bytes.append(kDescriptorBytes - bytes.size(), '\0');
    addText(bytes, kDescriptorBytes);
}

void TransportWriter::addVariables()
{
    const QByteArray count = QByteArray::number(m_variables.size()).rightJustified(4, '0');
    addHeader(m_version == TransportVersion::V5 ? "NAMESTR" : "NAMSTV8",
              "000000" + count + "00000000000000000000");
    qint64 position = 0;
    for (size_t i = 0; i < m_variables.size(); ++i) {
        addVariable(m_variables[i], static_cast<int>(i) + 1, position);
        position += m_variables[i].width;
    }
    padRecord();
}

void TransportWriter::addLongLabels()
{
    QByteArray labels;
    int count = 0;
    for (size_t i = 0; i < m_variables.size(); ++i) {
        const Variable &variable = m_variables[i];
        if (variable.label.size() <= kShortLabel) {
            continue;
        }
        ++count;
        // Number of the variable, sizes of its name and label, name, label; without padding.
        append(&labels, static_cast<int>(i) + 1);
        append(&labels, static_cast<int>(variable.name.size()));
        append(&labels, static_cast<int>(variable.label.size()));
        labels += variable.name + variable.label;
    }
    if (count > 0 && m_version == TransportVersion::V8) {
        addHeader("LABELV8", QByteArray::number(count));
        addText(labels, labels.size());
        padRecord();
    }
}

void TransportWriter::addObservations(qint64 rows)
{
    // Rows of version 5 end with the file.
    if (m_version == TransportVersion::V5) {
        addHeader("OBS", kNoNumbers);
    } else {
        addHeader("OBSV8", QByteArray::number(rows).rightJustified(15, ' '));
    }
}

Result<void, Error> TransportWriter::flush()
{
    const auto bytes = static_cast<qint64>(m_buffer.size());
    if (bytes > 0 && !m_sink.write(m_buffer.data(), bytes)) {
        return Fault{Error::CannotWrite, QStringLiteral("the file cannot be written")};
    }
    m_written += bytes;
    m_buffer.clear();
    return {};
}

Result<void, Error> TransportWriter::begin(qint64 rows)
{
    if (m_variables.size() > kMaxTransportVariables) {
        return Fault{Error::TooManyVariables, QString::number(m_variables.size())};
    }
    addLibrary();
    addMember();
    addVariables();
    addLongLabels();
    addObservations(rows);
    return flush();
}

inline const char *TransportWriter::addNumber(const char *at, size_t variable, char *out)
{
    const auto value = loadNative<double>(at);
    if (cell::isMissingDouble(value)) {
        putIbmMissing(out);
        return at + sizeof value;
    }
    const Stored stored = putIbmFloat(value, m_variables[variable].width, out);
    if (stored != Stored::Exact) [[unlikely]] {
        ValueReport &report = m_reports[variable];
        (stored == Stored::Rounded ? report.rounded : report.tooLarge).add(m_rows + 1);
    }
    return at + sizeof value;
}

/// Writes the packed row `at` to `out`; returns its end.
inline const char *TransportWriter::addRow(const char *at, char *out)
{
    const char *const row = out;
    for (size_t i = 0; i < m_variables.size(); ++i) {
        const auto width = static_cast<size_t>(m_variables[i].width);
        if (m_variables[i].isText) {
            const auto size = loadNative<quint32>(at);
            at += sizeof size;
            std::memcpy(out, at, size);
            std::memset(out + size, ' ', width - size);
            at += size + 1;
        } else {
            at = addNumber(at, i, out);
        }
        out += width;
    }
    ++m_rows;
    const bool isBlank = std::all_of(row, row + m_rowBytes, [](char c) { return c == ' '; });
    m_blankRows = isBlank ? m_blankRows + 1 : 0;
    return at;
}

Result<void, Error> TransportWriter::addRows(std::string_view block)
{
    const char *at = block.data();
    const char *const end = at + block.size();
    // A number narrower than 8 bytes is written with 8, so the last one needs more room.
    std::vector<char> row(m_rowBytes + kNumberBytes);
    while (at < end) {
        at = addRow(at, row.data());
        m_buffer.insert(m_buffer.end(), row.data(), row.data() + m_rowBytes);
        if (m_buffer.size() >= kFlushBytes) {
            if (auto flushed = flush(); !flushed) {
                return flushed;
            }
        }
    }
    return {};
}

Result<void, Error> TransportWriter::finish()
{
    padRecord();
    return flush();
}

} // namespace corvanta::sas
