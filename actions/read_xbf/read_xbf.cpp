#include "actions/read_xbf/read_xbf.h"

#include "actions/read_xbf/xbf_file.h"
#include "actions/shared/tables/reader_file.h"
#include "corvanta/system.h"

using namespace Qt::StringLiterals;

namespace corvanta {

ActionReadXBF::ActionReadXBF(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadXbfEntry, saved, parameters)
{
}

// ---- Kinds of the columns.

namespace {

/// Scan the records of a table, at most `rows`; returns how many are left of them.
qint64 scanRecords(dbf::TableReader &table, std::vector<values::ColumnScan> *scans, qint64 rows)
{
    for (; rows > 0; --rows) {
        const auto record = table.next();
        if (!record || *record == dbf::TableReader::Item::End) {
            break; // the run reports why a table cannot be read further
        }
        const size_t wanted = *record == dbf::TableReader::Item::Record ? scans->size() : 0;
        const auto place = [&] { return u"record %1"_s.arg(table.findings().records); };
        for (size_t i = 0; i < wanted; ++i) {
            const auto text = (*scans)[i].isDecided() ? std::nullopt : table.text(i);
            if (text && !text->isEmpty()) {
                (*scans)[i].add({text->data(), static_cast<size_t>(text->size())}, place);
            }
        }
    }
    return rows;
}

/// Set the kind of a column that has a type in the file.
void setTypedKind(const dbf::Field &field, ColumnKind *kind)
{
    // The digits of a date are not a number.
    if (field.type == 'D' && field.conversion == dbf::Conversion::Digits) {
        *kind = ColumnKind{.column = kind->column};
    } else if (field.cell != dbf::CellType::Text) {
        const bool isKey = field.cell == dbf::CellType::Key;
        kind->kind = isKey ? ValueKind::Integer : ValueKind::Decimal;
        kind->letter = isKey ? 'K' : 'F';
    }
}

/// The columns of the first table, and what their values have been so far.
struct ScannedTable
{
    QStringList names;
    std::vector<dbf::Field> fields;
    std::vector<values::ColumnScan> scans;
    qint64 rowsLeft; ///< to scan, over all tables
};

/// Scan the records of a table. One with other columns is left out: the run reports it.
void scanTable(dbf::TableReader &table, ScannedTable *scanned)
{
    if (scanned->fields.empty()) {
        scanned->fields = table.columns();
        scanned->scans.resize(scanned->fields.size());
        for (size_t i = 0; i < scanned->fields.size(); ++i) {
            scanned->names << table.columnName(i);
        }
    }
    if (table.columns().size() == scanned->fields.size()) {
        scanned->rowsLeft = scanRecords(table, &scanned->scans, scanned->rowsLeft);
    }
}

QVector<ColumnKind> kindsOfTable(const ScannedTable &scanned)
{
    QVector<ColumnKind> kinds = kindsOf(scanned.names, scanned.scans);
    for (size_t i = 0; i < scanned.fields.size(); ++i) {
        setTypedKind(scanned.fields[i], &kinds[static_cast<qsizetype>(i)]);
    }
    return kinds;
}

} // namespace

std::optional<QVector<ColumnKind>> ActionReadXBF::columnKinds(KindExtent extent)
{
    if (!m_params.types.isEmpty()) {
        return QVector<ColumnKind>();
    }
    const encoding::TextDecoder decoder = makeDecoder();
    ReadXbfParams params = m_params;
    params.isoValues = true; // as readColumnsAs() reads them
    ScannedTable scanned{.rowsLeft = rowsToScan(extent)};
    for (const QString &name : namesOfPattern(*this, m_params.fileName)) {
        InputFile file(globalParameters(), name, true, InputFile::Report::Nothing);
        file.keepPipe();
        const auto table = XbfFile::openTable(file, decoder, params);
        if (!file.isOpen() || !table) {
            return std::nullopt; // a part of the rows must not decide
        }
        DeclaredEncoding declared;
        if (m_params.declaredEncoding && m_params.encoding == XbfEncoding::Windows1252) {
            declared = declaredEncodingOf(globalParameters(), name, file, (*table)->header());
        }
        if (declared.decoder) {
            (*table)->setDecoder(*declared.decoder);
        }
        scanTable(**table, &scanned);
    }
    return kindsOfTable(scanned);
}

// ---- Before the first row.

encoding::TextDecoder ActionReadXBF::makeDecoder() const
{
    switch (m_params.encoding) {
    case XbfEncoding::Windows1252:
        return encoding::TextDecoder::windows1252();
    case XbfEncoding::System:
        return encoding::TextDecoder::named(currentACPName());
    case XbfEncoding::Utf8:
        return encoding::TextDecoder::utf8();
    default: // Kept for saved graphs: any other number leaves the bytes unconverted.
        return encoding::TextDecoder::unconverted();
    }
}

void ActionReadXBF::start()
{
    m_series.start(*this, namesOfPattern(*this, m_params.fileName),
                   {.fileNameColumn = m_params.outputFilenames ? u"_FileNames"_s : QString()});
    // No file is open now: the old decoder is not used any more.
    m_decoder.emplace(makeDecoder());
    // A failure is logged and fails the run. step() then finds no open file and ends it.
    m_series.openNext();
}

// ---- Files and messages.

FileSeries::Opened ActionReadXBF::openFile(const QString &name)
{
    return XbfFile::open(*this, name, *m_decoder, m_params);
}

/// A missing file is skipped, but the first one defines the columns.
bool ActionReadXBF::reportMissing(const QString &name)
{
    const bool fails = !m_series.hasColumns();
    const QString text =
        fails ? u"ERROR: cannot open DBF file '%1'\n"_s : u"Warning: cannot open DBF file '%1'\n"_s;
    return failOrWarn(*this, fails, text.arg(name));
}

/// The type message of this reader names the type in the first file first.
bool ActionReadXBF::reportMismatch(const ColumnMismatch &mismatch)
{
    ColumnMismatch shown = mismatch;
    if (shown.kind == ColumnMismatch::Kind::Type) {
        shown.first.swap(shown.found);
    }
    return fail(textOf(shown, u"DBF"_s, u"ReadXBF"_s));
}

} // namespace corvanta
