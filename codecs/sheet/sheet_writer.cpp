// Rows of a worksheet (ECMA-376 part 1: sheetData 18.3.1.80, row 18.3.1.73, c 18.3.1.4), UTF-8:
//
//   <row r="7" spans="1:5">                                        row from 1; columns from A
//     <c r="A7"><v>42</v></c>                                      number
//     <c r="B7" s="1"><v>45351</v></c>                             date: a serial with a style
//     <c r="C7" t="inlineStr"><is><t>escaped text</t></is></c>     text
//     <c r="D7" s="2" t="inlineStr"><is><t>label</t></is></c>      hyperlink
//     <c r="E7"><f>A7+1</f></c>                                    formula without its value
//     <c r="F7" t="b"><v>1</v></c>                                 boolean: 1 is true
//   </row>
//
// A cell without content is left out.
#include "codecs/sheet/sheet_writer.h"

#include "base/number_cell.h"
#include "base/time/iso_time.h"

#include <cmath>
#include <cstring>
#include <utility>

namespace corvanta::sheet {

namespace {

/// Bytes for everything of a cell but its text, with what append() copies in excess.
constexpr size_t kCellBytes = 320;

const Markup kRowOpening("<row r=\"");
const Markup kRowClosing("</row>");
const Markup kTextOpening("\" t=\"inlineStr\"><is><t>");
const Markup kTextClosing("</t></is></c>");
const Markup kValueOpening("\"><v>");
const Markup kValueClosing("</v></c>");
const Markup kTrueCell("\" t=\"b\"><v>1</v></c>");
const Markup kFalseCell("\" t=\"b\"><v>0</v></c>");
const Markup kFormulaOpening("\"><f>");
const Markup kFormulaClosing("</f></c>");

/// `opening` of a cell with a cell format.
Markup withStyle(quint64 style, const Markup &opening)
{
    return Markup("\" s=\"" + QByteArray::number(style) +
                  QByteArrayView(opening.text, opening.size).toByteArray());
}

/// Whether the time in an ISO date has digits that a number of milliseconds cannot hold.
bool hasLongFraction(std::u16string_view text)
{
    constexpr size_t kMillisecondDigits = 3;
    const size_t point = text.find(u'.');
    return point != std::u16string_view::npos &&
           text.find_first_of(u"123456789", point + 1 + kMillisecondDigits) != text.npos;
}

/// Whether a zone follows the minutes in an ISO date with a time.
bool hasZone(std::u16string_view text)
{
    constexpr size_t kMinuteUnits = 16; // 2026-01-31T04:30
    return text.size() > kMinuteUnits &&
           text.find_first_of(u"Zz+-", kMinuteUnits) != std::u16string_view::npos;
}

} // namespace

SheetWriter::SheetWriter(zip::PackageWriter &package, SheetOptions options,
                         std::vector<Column> columns, DateParser *dates, CellReport report)
    : m_package(package)
    , m_options(std::move(options))
    , m_columns(std::move(columns))
    , m_newStyles(m_options.columnStyles)
    , m_dates(dates)
    , m_isoDates(DateParser::iso(m_options.monthFix))
    , m_report(std::move(report))
    , m_rowStart("\" spans=\"1:" + QByteArray::number(static_cast<int>(m_columns.size())) + "\">")
    , m_dateOpening(withStyle(m_options.dateStyle, kValueOpening))
    , m_dayOpening(withStyle(m_options.dayStyle.value_or(m_options.dateStyle), kValueOpening))
    , m_dateTimeOpening(withStyle(m_options.dateTimeStyle, kValueOpening))
    , m_dateTimeDayOpening(
          withStyle(m_options.dateTimeDayStyle.value_or(m_options.dateTimeStyle), kValueOpening))
    , m_timeOpening(withStyle(m_options.timeStyle, kValueOpening))
    , m_linkOpening(withStyle(m_options.linkStyle, kTextOpening))
{
    for (int i = 0; i < columnCount(); ++i) {
        m_references.emplace_back("<c r=\"" + columnLetters(i));
    }
    m_hasStyle.resize(m_columns.size());
}

void SheetWriter::applyStyles()
{
    const size_t count = std::min(m_newStyles.size(), m_columns.size());
    for (size_t i = 0; i < count; ++i) {
        if (m_newStyles[i]) {
            m_references[i] = Markup("<c s=\"" + QByteArray::number(*m_newStyles[i]) + "\" r=\"" +
                                     columnLetters(static_cast<int>(i)));
            m_hasStyle[i] = 1;
        }
    }
    m_newStyles.clear();
}

QByteArray SheetWriter::takeHeld()
{
    m_held.truncate(m_out - m_begin);
    m_isHolding = false;
    m_begin = m_out = m_end = nullptr;
    return std::exchange(m_held, {});
}

// The room grows by doubling, so that each byte is copied a few times at most.
void SheetWriter::makeHeldRoom(size_t bytes)
{
    constexpr qsizetype kFirstBytes = qsizetype(64) << 10;
    const qsizetype used = m_out - m_begin;
    m_held.resize(std::max({used + static_cast<qsizetype>(bytes), 2 * used, kFirstBytes}));
    m_begin = m_held.data();
    m_out = m_begin + used;
    m_end = m_begin + m_held.size();
}

void SheetWriter::commit()
{
    if (m_out != m_begin) {
        m_package.commit(static_cast<size_t>(m_out - m_begin));
    }
    m_begin = m_out = m_end = nullptr;
}

bool SheetWriter::makeRoom(size_t bytes)
{
    if (m_isHolding) {
        makeHeldRoom(bytes);
        return true;
    }
    // The package compresses a block on a worker thread as soon as it is committed.
    commit();
    auto room = m_package.room(bytes);
    if (!room) {
        m_error = Error::WriteFailed;
        return false;
    }
    m_begin = m_out = room->data();
    m_end = m_begin + room->size();
    return true;
}

void SheetWriter::append(QByteArrayView text)
{
    std::memcpy(m_out, text.data(), static_cast<size_t>(text.size()));
    m_out += text.size();
}

void SheetWriter::append(const Markup &markup)
{
    std::memcpy(m_out, markup.text, sizeof markup.text);
    m_out += markup.size;
}

void SheetWriter::appendReference(int column)
{
    append(m_references[static_cast<size_t>(column)]);
    std::memcpy(m_out, m_rowDigits, sizeof m_rowDigits);
    m_out += m_rowDigitCount;
}

bool SheetWriter::putAll(QByteArrayView xml)
{
    while (!xml.isEmpty()) {
        // A block is the most that the package gives in one call.
        const qsizetype n = std::min<qsizetype>(xml.size(), zip::PackageWriter::kMaxRoomBytes);
        if (!room(static_cast<size_t>(n))) {
            return false;
        }
        append(xml.first(n));
        xml = xml.sliced(n);
    }
    return true;
}

Result<void, Error> SheetWriter::put(QByteArrayView xml)
{
    return putAll(xml) ? Result<void, Error>() : Fault<Error>{m_error};
}

bool SheetWriter::startRow()
{
    if (!room(kCellBytes)) {
        return false;
    }
    // The digits are kept for the references of the row's cells.
    m_rowDigitCount = putUInt(static_cast<quint64>(m_row), m_rowDigits);
    append(kRowOpening);
    append({m_rowDigits, m_rowDigitCount});
    append(m_rowStart);
    return true;
}

Result<void, Error> SheetWriter::endRow(bool isGood)
{
    if (!isGood || !room(kCellBytes)) {
        return Fault<Error>{m_error};
    }
    append(kRowClosing);
    ++m_row;
    return {};
}

Result<void, Error> SheetWriter::putHeader()
{
    // As text in every case: a name may look like a number, a formula or a link.
    const Markup opening =
        m_options.headerStyle ? withStyle(*m_options.headerStyle, kTextOpening) : kTextOpening;
    bool isGood = startRow();
    for (int i = 0; isGood && i < columnCount(); ++i) {
        const std::u16string name = m_columns[static_cast<size_t>(i)].name.toStdU16String();
        isGood = putEscaped(i, opening, name, kTextClosing);
    }
    return endRow(isGood);
}

Result<void, Error> SheetWriter::putRow(const RowView &row)
{
    if (!m_newStyles.empty()) {
        applyStyles();
    }
    bool isGood = startRow();
    for (int i = 0; isGood && i < columnCount(); ++i) {
        isGood = putCell(i, row);
    }
    return endRow(isGood);
}

inline bool SheetWriter::putCell(int column, const RowView &row)
{
    const Column &one = m_columns[static_cast<size_t>(column)];
    const uchar *const cell = row.cells[one.input];
    switch (one.kind) {
    case Column::Kind::Key:
        return putKey(column, cell);
    case Column::Kind::Float:
        return putFloat(column, cell);
    case Column::Kind::Date: {
        const cell::Type type = row.type(one.input);
        return type == cell::Type::Text ? putDate(column, cell::readText(cell).view())
                                        : putNumberAsDate(column, type, cell);
    }
    case Column::Kind::DateTime:
        return putDateTime(column, cell::readText(cell).view());
    case Column::Kind::Time:
        return putTime(column, cell::readText(cell).view());
    case Column::Kind::Boolean:
        return putBoolean(column, cell::readText(cell).view());
    case Column::Kind::Formula:
    case Column::Kind::Text:
        break;
    }
    return putText(column, one.kind, cell::readText(cell).view());
}

bool SheetWriter::putKey(int column, const uchar *cell)
{
    const auto key = loadNative<quint32>(cell);
    if (cell::isMissingKey(key)) {
        return true;
    }
    if (!room(kCellBytes)) {
        return false;
    }
    appendReference(column);
    append(kValueOpening);
    m_out += putUInt(key, m_out);
    append(kValueClosing);
    return true;
}

bool SheetWriter::putFloat(int column, const uchar *cell)
{
    // The missing value is a NaN too, so noNans does not decide about it.
    const auto value = loadNative<double>(cell);
    const bool isFinite = std::isfinite(value);
    if (cell::isMissingDouble(value)) {
        return true;
    }
    if (!isFinite && m_options.noNans) {
        m_report(CellProblem::NotFinite, column, {});
        return true;
    }
    if (!room(kCellBytes)) {
        return false;
    }
    appendReference(column);
    if (isFinite) {
        return putFinite(value);
    }
    append(kTextOpening);
    append(QByteArrayView(std::isnan(value) ? "nan" : value <= 0 ? "-inf" : "inf"));
    append(kTextClosing);
    return true;
}

inline bool SheetWriter::putFinite(double value)
{
    append(kValueOpening);
    // A user's format can print more than kCellBytes. Then that much room is made, in which the
    // cell continues: what is committed before is not needed again.
    const qsizetype spare = m_end - m_out - static_cast<qsizetype>(sizeof(Markup));
    const qsizetype needed = m_options.floatFormat.put(value, m_out, spare);
    if (needed >= spare) {
        if (!room(static_cast<size_t>(needed) + sizeof(Markup) + 1)) {
            return false;
        }
        m_options.floatFormat.put(value, m_out, needed + 1);
    }
    m_out += needed;
    append(kValueClosing);
    return true;
}

/// Units of a date without a time: 2024-02-29.
constexpr size_t kDayUnits = 10;

bool SheetWriter::putDate(int column, std::u16string_view text)
{
    if (text.empty()) {
        return true;
    }
    const auto serial = m_dates->serial(text);
    if (!serial || *serial < std::max<double>(kFirstSerial, m_options.firstDay)) {
        if (m_options.keepOddDates) {
            return putText(column, Column::Kind::Text, text);
        }
        m_report(serial ? CellProblem::EarlyDate : CellProblem::NotADate, column, text);
        return true;
    }
    // Without a dayStyle both are the same.
    return putSerial(column, *serial - m_options.firstDay,
                     text.size() > kDayUnits ? m_dateOpening : m_dayOpening);
}

/// Never left out: a text that is not a date, or too early for a sheet, is written as it is.
bool SheetWriter::putDateTime(int column, std::u16string_view text)
{
    const auto serial = text.empty() ? std::nullopt : m_isoDates.serial(text);
    if (!serial || *serial < std::max<double>(kFirstSerial, m_options.firstDay)) {
        return putText(column, Column::Kind::Text, text);
    }
    if (hasLongFraction(text)) {
        m_report(CellProblem::LongFraction, column, text);
    }
    if (hasZone(text)) {
        m_report(CellProblem::Zone, column, text);
    }
    return putSerial(column, *serial - m_options.firstDay,
                     text.size() > kDayUnits ? m_dateTimeOpening : m_dateTimeDayOpening);
}

/// A time of day is the fraction of a day, without a date.
bool SheetWriter::putTime(int column, std::u16string_view text)
{
    constexpr qint64 kNanosecondsPerMs = 1'000'000;
    constexpr qint64 kMsPerDay = 86'400'000;
    const auto time = parseIsoTime(text);
    if (!time) {
        return putText(column, Column::Kind::Text, text);
    }
    if (hasLongFraction(text)) {
        m_report(CellProblem::LongFraction, column, text);
    }
    const qint64 ms = (*time + kNanosecondsPerMs / 2) / kNanosecondsPerMs;
    return putSerial(column, static_cast<double>(std::min(ms, kMsPerDay - 1)) / kMsPerDay,
                     m_timeOpening);
}

/// The text of a serial: enough digits for milliseconds.
bool SheetWriter::putSerial(int column, double serial, const Markup &opening)
{
    constexpr int kSerialDigits = 16;
    if (!room(kCellBytes)) {
        return false;
    }
    appendReference(column);
    append(openingFor(column, opening, kValueOpening));
    m_out += putGeneral(serial, kSerialDigits, m_out);
    append(kValueClosing);
    return true;
}

/// The program shows the word in its own language.
bool SheetWriter::putBoolean(int column, std::u16string_view text)
{
    const QStringView word(text.data(), static_cast<qsizetype>(text.size()));
    const bool isTrue = word.compare(u"true", Qt::CaseInsensitive) == 0;
    if (!isTrue && word.compare(u"false", Qt::CaseInsensitive) != 0) {
        return putText(column, Column::Kind::Text, text);
    }
    if (!room(kCellBytes)) {
        return false;
    }
    appendReference(column);
    append(isTrue ? kTrueCell : kFalseCell);
    return true;
}

bool SheetWriter::putNumberAsDate(int column, cell::Type type, const uchar *cell)
{
    std::array<char16_t, kNumberChars> text{};
    const int units = cell::putNumberText(type, cell, text.data());
    return putDate(column, {text.data(), static_cast<size_t>(units)});
}

bool SheetWriter::putText(int column, Column::Kind kind, std::u16string_view text)
{
    if (text.empty()) {
        return true;
    }
    // The f element holds a formula without its "=" (ECMA-376 part 1, 18.3.1.40).
    const bool startsFormula = text.front() == u'=';
    if (kind == Column::Kind::Formula || (m_options.equalIsFormula && startsFormula)) {
        text.remove_prefix(startsFormula ? 1 : 0);
        return putEscaped(column, kFormulaOpening, text, kFormulaClosing);
    }
    if (m_options.urlTag) {
        if (const auto link = parseLink(text)) {
            return putLink(column, *link);
        }
    }
    return putEscaped(column, kTextOpening, text, kTextClosing);
}

bool SheetWriter::putLink(int column, const LinkText &link)
{
    const QString url(reinterpret_cast<const QChar *>(link.url.data()),
                      static_cast<qsizetype>(link.url.size()));
    // Cells with one address share its relationship, so that a repeated address costs only a cell.
    qint64 &number = m_urlNumbers[url];
    if (number == 0) {
        m_urls << url;
        number = m_urls.size();
    }
    m_linkUses.push_back({number, m_row, column});
    return putEscaped(column, openingFor(column, m_linkOpening, kTextOpening), link.label,
                      kTextClosing);
}

bool SheetWriter::putEscaped(int column, const Markup &opening, std::u16string_view text,
                             const Markup &closing)
{
    const auto n = static_cast<qsizetype>(text.size());
    if (n > kShortTextUnits) {
        return putLongEscaped(column, opening, text, closing);
    }
    if (!room(kCellBytes + static_cast<size_t>(n * kMaxBytesPerUnit))) {
        return false;
    }
    appendReference(column);
    append(opening);
    m_out = escapeText(text.data(), n, m_out, &m_isOdd);
    append(closing);
    if (m_isOdd) {
        reportOddText(column, text);
    }
    return true;
}

void SheetWriter::reportOddText(int column, std::u16string_view text)
{
    m_isOdd = false;
    m_report(CellProblem::OddText, column, text);
}

bool SheetWriter::putLongEscaped(int column, const Markup &opening, std::u16string_view text,
                                 const Markup &closing)
{
    // The text is escaped into a buffer first: its length decides whether it is written at all.
    const auto atLimit = m_options.crop ? AtLimit::Crop : AtLimit::Warn;
    const auto problem = m_options.crop ? CellProblem::CutText : CellProblem::LongText;
    const qsizetype chars = escapeLongText(
        text.data(), static_cast<qsizetype>(text.size()), atLimit, kMaxCellChars,
        [&] { m_report(problem, column, text); }, &m_longText, &m_isOdd);
    if (m_isOdd) {
        reportOddText(column, text);
    }
    if (chars > kMaxCellChars) {
        m_error = Error::TextTooLong;
        return false;
    }
    if (!room(kCellBytes)) {
        return false;
    }
    appendReference(column);
    append(opening);
    if (!putAll({m_longText.data(), static_cast<qsizetype>(m_longText.size())}) ||
        !room(kCellBytes)) {
        return false;
    }
    append(closing);
    return true;
}

} // namespace corvanta::sheet
