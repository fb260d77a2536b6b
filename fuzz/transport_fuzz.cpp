// Rows of any content as a SAS transport file: a reader of its own gives the same values. The same
// rows as a data set, by way of a spool. Texts as dates: another reader of them finds the same.
//
// Bytes 0 to 2: version, encoding and widths. The table follows.
#include "base/time/iso_time.h"
#include "codecs/sas/data_set_writer.h"
#include "codecs/sas/iso_date.h"
#include "codecs/sas/transport_writer.h"
#include "codecs/sas/variable_names.h"
#include "codecs/stat/check/header_check.h"
#include "fuzz/support/require.h"
#include "fuzz/support/table.h"
#include "io/spool/block_spool.h"

#include <cmath>

using namespace corvanta;
using namespace corvanta::sas;

namespace {

constexpr qsizetype kRecord = 80;

/// The double of an IBM number of `width` bytes; NaN for a missing one.
double fromIbm(const char *bytes, int width)
{
    std::array<char, 8> all{};
    std::memcpy(all.data(), bytes, static_cast<size_t>(width));
    const auto bits = loadBE<quint64>(all.data());
    const quint64 fraction = bits << 8 >> 8;
    if (fraction == 0) {
        return bits == 0 ? 0 : std::nan("");
    }
    const int power = static_cast<int>(bits >> 56 & 127) - 64;
    const double value = std::ldexp(static_cast<double>(fraction), 4 * power - 56);
    return bits >> 63 != 0 ? -value : value;
}

/// Whether `stored` is what became of `value` in so many bytes.
bool isNumber(double value, double stored, int width)
{
    const double size = std::abs(value);
    if (std::isnan(value) || size >= std::ldexp(1.0, 252)) {
        return std::isnan(stored);
    }
    if (size < std::ldexp(1.0, -260)) {
        return stored == 0;
    }
    // The first of the hexadecimal digits may have one bit only.
    const double lost = std::ldexp(size, 4 - 8 * (width - 1));
    return width == 8 ? value == stored : std::abs(value - stored) <= lost;
}

/// Reads the file that was written, and compares.
class Check
{
public:
    Check(const QByteArray &file, TransportVersion version)
        : m_file(file)
        , m_version(version)
    {
    }

    void header(const std::vector<Variable> &variables)
    {
        require(m_file.size() % kRecord == 0 && m_file.startsWith("HEADER RECORD*******LIB"));
        m_at = 7 * kRecord;
        require(m_file.mid(m_at + 54, 4).toInt() == static_cast<int>(variables.size()));
        m_at += kRecord;
        for (const Variable &variable : variables) {
            require(short16(0) == (variable.isText ? 2 : 1) && short16(4) == variable.width);
            require(field(8, 8) ==
                    variable.name.first(std::min<qsizetype>(8, variable.name.size())));
            require(m_version == TransportVersion::V5 || field(88, 32) == variable.name);
            m_at += 140;
        }
        m_at = (m_at + kRecord - 1) / kRecord * kRecord;
        const char *const end = m_version == TransportVersion::V5 ? "HEADER RECORD*******OBS     "
                                                                  : "HEADER RECORD*******OBSV8   ";
        m_at = m_file.indexOf(end, m_at);
        require(m_at > 0 && m_at % kRecord == 0);
        m_at += kRecord;
    }
    double number(int width)
    {
        m_at += width;
        require(m_at <= m_file.size());
        return fromIbm(m_file.constData() + m_at - width, width);
    }
    QByteArray text(int width)
    {
        m_at += width;
        require(m_at <= m_file.size());
        return m_file.mid(m_at - width, width);
    }
    void end()
    {
        require(m_file.size() - m_at < kRecord);
        require(m_file.mid(m_at).count(' ') == m_file.size() - m_at);
    }

private:
    int short16(qsizetype offset) const
    {
        return loadBE<quint16>(m_file.constData() + m_at + offset);
    }
    QByteArray field(qsizetype offset, qsizetype width) const
    {
        QByteArray text = m_file.mid(m_at + offset, width);
        while (text.endsWith(' ')) {
            text.chop(1);
        }
        return text;
    }

    const QByteArray &m_file;
    TransportVersion m_version;
    qsizetype m_at = 0;
};

/// A text that is a date for all readers has the same day, and the same time in it.
void checkDate(std::u16string_view text)
{
    constexpr qint64 kDaysTo1970 = 3653;
    const auto moment = parseIsoDateTime(text);
    const auto seconds = dateValue(text, DateUnit::Seconds);
    const auto days = dateValue(text, DateUnit::Days);
    require(!moment || seconds);
    if (moment) {
        const double whole = double(moment->day + kDaysTo1970) * 86400;
        require(std::abs(*seconds - whole - double(moment->nanoseconds) / 1e9) < 1e-4);
        require(days.has_value() == (moment->nanoseconds == 0));
    }
    require(!days || *days * 86400 == *seconds);
    const auto clock = parseIsoTime(text);
    const auto time = dateValue(text, DateUnit::Time);
    require(!clock || (time && std::abs(*time - double(*clock) / 1e9) < 1e-4));
}

double numberOf(cell::Type type, const uchar *cell)
{
    if (type == cell::Type::Double) {
        return loadNative<double>(cell);
    }
    const auto key = loadNative<quint32>(cell);
    return cell::isMissingKey(key) ? std::nan("") : key;
}

/// What becomes of a text in so many bytes.
QByteArray expectedText(const TextEncoder &encoder, const uchar *cell, int width)
{
    const QByteArray whole = encoder.encode(cell::readText(cell).view());
    const QByteArray cut = whole.first(encoder.fit(whole.constData(), whole.size(), width));
    Utf8Stop stop = Utf8Stop::End;
    require(!encoder.isUtf8() || wellFormedUtf8(cut.constData(), cut.size(), &stop) == cut.size());
    return cut.leftJustified(width, ' ');
}

std::vector<Variable> variablesOf(const RowView &row, Feed &options, TransportVersion version)
{
    std::vector<Variable> variables(static_cast<size_t>(row.columns));
    std::vector<QByteArray> names;
    QStringList columns;
    const TransportLimits limits = limitsOf(version);
    for (int i = 0; i < row.columns; ++i) {
        columns << row.names[i];
        names.push_back(validName(row.names[i], limits.name));
        Variable &variable = variables[static_cast<size_t>(i)];
        variable.isText = row.type(i) == cell::Type::Text;
        variable.width = variable.isText ? 1 + options.below(limits.text) : 3 + options.below(6);
        variable.label = cutUtf8(row.names[i].repeated(options.below(20)).toUtf8(), limits.label);
    }
    makeUnique(names, columns, Qt::CaseInsensitive, limits.name);
    for (size_t i = 0; i < names.size(); ++i) {
        variables[i].name = names[i];
    }
    return variables;
}

/// The rows as blocks, in a spool that keeps few of them in memory.
void spoolRows(const FuzzTable &table, RowPacker *packer, BlockSpool *spool, QByteArray *all)
{
    for (int i = 0; i < table.rowCount(); ++i) {
        packer->add(table.row(i).cells, i + 1);
        if (i % 3 == 0 || i + 1 == table.rowCount()) { // blocks of several rows, and of one
            all->append(packer->block().data(), static_cast<qsizetype>(packer->block().size()));
            require(bool(spool->put(packer->block())));
            packer->clear();
        }
    }
}

/// The rows as a SAS data set, kept in a spool before they are written: the spool returns the
/// blocks unchanged, and the checks of our reader accept the file.
void checkDataSet(const FuzzTable &table, const TextEncoder &encoder,
                  std::vector<Variable> variables, std::vector<PackedColumn> packed)
{
    for (size_t i = 0; i < variables.size(); ++i) {
        variables[i].width = variables[i].isText ? variables[i].width : kNumberBytes;
        packed[i].maxBytes = variables[i].width;
    }
    RowPacker packer(encoder, packed);
    BlockSpool spool({{}, 200, {}});
    QByteArray expected;
    spoolRows(table, &packer, &spool, &expected);

    MemorySink sink;
    DataSetWriter writer(sink, variables);
    require(bool(writer.begin(table.rowCount())) && bool(spool.rewind()));
    QByteArray found;
    for (auto block = spool.next(); block && *block; block = spool.next()) {
        found.append((*block)->data(), static_cast<qsizetype>((*block)->size()));
        require(bool(writer.addRows(**block)));
    }
    require(found == expected && bool(writer.finish()));
    MemorySource file(sink.bytes());
    require(bool(corvanta::stat::checkHeader(file, corvanta::stat::Format::Sas)));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Feed feed(data, size);
    const auto version = feed.flag() ? TransportVersion::V8 : TransportVersion::V5;
    const TextEncoder encoder =
        feed.flag() ? *TextEncoder::named("WINDOWS-1252") : TextEncoder::utf8();
    Feed widths(data, std::min<size_t>(size, 16));
    const FuzzTable table(feed);
    const RowView columns = table.row(0);
    const std::vector<Variable> variables = variablesOf(columns, widths, version);

    std::vector<PackedColumn> packed;
    for (int i = 0; i < columns.columns; ++i) {
        packed.push_back({i, columns.type(i), variables[static_cast<size_t>(i)].width});
    }
    RowPacker packer(encoder, packed);
    MemorySink sink;
    TransportWriter writer(sink, version, "T", variables);
    require(bool(writer.begin(table.rowCount())));
    for (int i = 0; i < table.rowCount(); ++i) {
        packer.add(table.row(i).cells, i + 1);
        if (i % 3 == 0) { // blocks of several rows, and of one
            require(bool(writer.addRows(packer.block())));
            packer.clear();
        }
    }
    require(bool(writer.addRows(packer.block())) && bool(writer.finish()));

    Check check(sink.bytes(), version);
    check.header(variables);
    for (int r = 0; r < table.rowCount(); ++r) {
        const RowView row = table.row(r);
        for (int c = 0; c < row.columns; ++c) {
            const int width = variables[static_cast<size_t>(c)].width;
            if (row.type(c) == cell::Type::Text) {
                checkDate(cell::readText(row.cells[c]).view());
                require(check.text(width) == expectedText(encoder, row.cells[c], width));
            } else {
                const double stored = check.number(width);
                require(isNumber(numberOf(row.type(c), row.cells[c]), stored, width));
            }
        }
    }
    check.end();
    checkDataSet(table, encoder, variables, packed);
    return 0;
}
