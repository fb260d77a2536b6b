#include "actions/write_excel/sheet_writer.h"

#include <cmath>
#include <cstring>

namespace corvanta {

namespace {

/// Room for everything of a cell but its text, and for what is copied in excess.
constexpr size_t kCellBytes = 320;
/// Characters that the staging area of the format's first implementation held; kept as the limit of
/// a cell.
constexpr qsizetype kStagingChars = (8388610 - 4194308) / 2;
constexpr qsizetype kTextCellReserve = 68;
constexpr qsizetype kMostCellChars = kStagingChars - kTextCellReserve;

const Markup kRowOpening("<row r=\"");
const Markup kRowClosing("</row>");
const Markup kTextOpening("\" t=\"inlineStr\"><is><t>");
const Markup kTextClosing("</t></is></c>");
const Markup kValueOpening("\"><v>");
const Markup kValueClosing("</v></c>");
const Markup kFormulaOpening("\"><f>");
const Markup kFormulaClosing("</f></c>");

} // namespace

SheetWriter::SheetWriter(zip::PackageWriter &package, SheetOptions options,
                         std::vector<Column> columns, sheet::DateParser *dates,
                         std::function<void()> tooLong, std::function<bool()> retry)
    : m_package(package)
    , m_options(std::move(options))
    , m_columns(std::move(columns))
    , m_dates(dates)
    , m_tooLong(std::move(tooLong))
    , m_retry(std::move(retry))
    , m_rowStart("\" spans=\"1:" + QByteArray::number(static_cast<int>(m_columns.size())) + "\">")
    , m_datePrefix(m_options.datePrefix)
    , m_linkPrefix(m_options.linkPrefix)
{
    for (int i = 0; i < columnCount(); ++i) {
        m_references.emplace_back("<c r=\"" + sheet::columnLetters(i));
    }
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
    commit();
    for (;;) {
        auto room = m_package.room(bytes);
        if (room) {
            m_begin = m_out = room->data();
            m_end = m_begin + room->size();
            return true;
        }
        if (room.fault().code != zip::Error::WriteFailed || !m_retry()) {
            return false;
        }
    }
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

SheetWriter::Error SheetWriter::put(QByteArrayView xml)
{
    while (!xml.isEmpty()) {
        const qsizetype piece = std::min<qsizetype>(xml.size(), zip::PackageWriter::kMaxRoomBytes);
        if (!room(static_cast<size_t>(piece))) {
            return Error::Write;
        }
        append(xml.first(piece));
        xml = xml.sliced(piece);
    }
    return Error::None;
}

void SheetWriter::startRow()
{
    m_rowDigitCount = putUInt(static_cast<quint64>(m_row), m_rowDigits);
    append(kRowOpening);
    append({m_rowDigits, m_rowDigitCount});
    append(m_rowStart);
}

SheetWriter::Error SheetWriter::endRow()
{
    if (!room(kCellBytes)) {
        return Error::Write;
    }
    append(kRowClosing);
    return Error::None;
}

SheetWriter::Error SheetWriter::putHeader()
{
    if (!room(kCellBytes)) {
        return Error::Write;
    }
    startRow();
    for (int i = 0; i < columnCount(); ++i) {
        const std::u16string name = m_columns[static_cast<size_t>(i)].name.toStdU16String();
        const Error error = putEscaped(i, kTextOpening, name, kTextClosing);
        if (error != Error::None) {
            return error;
        }
    }
    ++m_row;
    return endRow();
}

SheetWriter::Error SheetWriter::putRow(const OneRow &row)
{
    if (!room(kCellBytes)) {
        return Error::Write;
    }
    startRow();
    const unsigned char *const *const cells = row.getAllColForWrite();
    for (int i = 0; i < columnCount(); ++i) {
        const Column &column = m_columns[static_cast<size_t>(i)];
        const uchar *const cell = cells[column.input];
        Error error = Error::None;
        switch (column.kind) {
        case Kind::Key:
            error = putKey(i, cell) ? Error::None : Error::Write;
            break;
        case Kind::Float:
            error = putFloat(i, cell) ? Error::None : Error::Write;
            break;
        case Kind::Date:
            error = putDate(i, row) ? Error::None : Error::Write;
            break;
        case Kind::Formula:
        case Kind::Text:
            error = putText(i, column.kind, cell::readText(cell).view());
            break;
        }
        if (error != Error::None) {
            return error;
        }
    }
    ++m_row;
    return endRow();
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
    const auto value = loadNative<double>(cell);
    const bool isFinite = std::isfinite(value);
    if (cell::isMissingDouble(value) || (!isFinite && m_options.noNans)) {
        return true;
    }
    if (!room(kCellBytes)) {
        return false;
    }
    appendReference(column);
    if (!isFinite) {
        append(kTextOpening);
        append(QByteArrayView(std::isnan(value) ? "nan" : value <= 0 ? "-inf" : "inf"));
        append(kTextClosing);
        return true;
    }
    append(kValueOpening);
    // A user's format can print more than any reserve: then as much room is made as it needs.
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

bool SheetWriter::putDate(int column, const OneRow &row)
{
    const QStringView text = row.textView(m_columns[static_cast<size_t>(column)].input);
    if (text.isEmpty()) {
        return true;
    }
    constexpr int kSerialDigits = 16;
    const auto serial = m_dates->serial({text.utf16(), static_cast<size_t>(text.size())});
    if (!serial || *serial < m_options.firstDay) {
        return true;
    }
    if (!room(kCellBytes)) {
        return false;
    }
    appendReference(column);
    append(m_datePrefix);
    m_out += putGeneral(*serial - m_options.firstDay, kSerialDigits, m_out);
    append(kValueClosing);
    return true;
}

SheetWriter::Error SheetWriter::putText(int column, Kind kind, std::u16string_view text)
{
    if (text.empty()) {
        return Error::None;
    }
    const bool startsFormula = text.front() == u'=';
    if (kind == Kind::Formula || (m_options.equalIsFormula && startsFormula)) {
        text.remove_prefix(startsFormula ? 1 : 0);
        return putEscaped(column, kFormulaOpening, text, kFormulaClosing);
    }
    if (m_options.urlTag) {
        if (const auto link = sheet::parseLink(text)) {
            return putLink(column, *link);
        }
    }
    return putEscaped(column, kTextOpening, text, kTextClosing);
}

SheetWriter::Error SheetWriter::putLink(int column, const sheet::LinkText &link)
{
    const QString url(reinterpret_cast<const QChar *>(link.url.data()),
                      static_cast<qsizetype>(link.url.size()));
    qint64 &number = m_urlNumbers[url];
    if (number == 0) {
        m_urls << url;
        number = m_urls.size();
    }
    m_linkUses.push_back({number, m_row, column});
    return putEscaped(column, m_linkPrefix, link.label, kTextClosing);
}

SheetWriter::Error SheetWriter::putEscaped(int column, const Markup &opening,
                                           std::u16string_view text, const Markup &closing)
{
    const auto n = static_cast<qsizetype>(text.size());
    if (n > sheet::kShortTextUnits) {
        return putLongEscaped(column, opening, text, closing);
    }
    if (!room(kCellBytes + static_cast<size_t>(n * sheet::kMaxBytesPerUnit))) {
        return Error::Write;
    }
    appendReference(column);
    append(opening);
    m_out = sheet::escapeText(text.data(), n, m_out);
    append(closing);
    return Error::None;
}

SheetWriter::Error SheetWriter::putLongEscaped(int column, const Markup &opening,
                                               std::u16string_view text, const Markup &closing)
{
    const auto atLimit = m_options.crop ? sheet::AtLimit::Crop : sheet::AtLimit::Warn;
    const qsizetype chars = sheet::escapeLongText(text.data(), static_cast<qsizetype>(text.size()),
                                                  atLimit, kMostCellChars, m_tooLong, &m_longText);
    if (chars > kMostCellChars) {
        return Error::BufferTooSmall;
    }
    if (!room(kCellBytes)) {
        return Error::Write;
    }
    appendReference(column);
    append(opening);
    const Error error = put({m_longText.data(), static_cast<qsizetype>(m_longText.size())});
    if (error != Error::None || !room(kCellBytes)) {
        return Error::Write;
    }
    append(closing);
    return Error::None;
}

QByteArray SheetWriter::hyperlinkElements(qint64 existing) const
{
    QByteArray elements;
    for (const LinkUse &use : m_linkUses) {
        elements += "<hyperlink ref=\"" + sheet::columnLetters(use.column) +
                    QByteArray::number(use.row) + "\" r:id=\"rId" +
                    QByteArray::number(use.number + existing) + "\"/>";
    }
    return elements;
}

} // namespace corvanta
