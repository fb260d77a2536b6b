// The columns of the input that are written have one index, from 0, in all lists of this file.
#include "actions/shared/data_set_output.h"

#include "base/counted.h"
#include "base/mapped.h"
#include "codecs/stat/date_text.h"
#include "corvanta/failure_reason.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

template <typename Named> QStringList namesOf(const std::vector<Named> &all)
{
    return mapped<QStringList>(all, [](const Named &element) { return element.name; });
}

/// Adds to the definitions of the parameters, which stay as they are where they say something.
class DefinitionList
{
public:
    explicit DefinitionList(std::vector<VariableDefinition> *variables)
        : m_variables(*variables)
    {
        for (size_t i = 0; i < m_variables.size(); ++i) {
            m_indexes.try_emplace(m_variables[i].name, i); // of equal names the first one counts
        }
    }
    void add(const QString &column, const QString &label, const QString &format)
    {
        if (label.isEmpty() && format.isEmpty()) {
            return;
        }
        const auto [found, isNew] = m_indexes.try_emplace(column, m_variables.size());
        if (isNew) {
            m_variables.push_back({.name = column});
        }
        VariableDefinition &defined = m_variables[found->second];
        defined.label = defined.label.isEmpty() ? label : defined.label;
        defined.format = defined.format.isEmpty() ? format : defined.format;
    }

private:
    std::vector<VariableDefinition> &m_variables;
    std::unordered_map<QString, size_t> m_indexes;
};

/// The format of SAS for one of the input, with its point; empty for those of dates, which depend
/// on the unit of the numbers, and for those that SAS does not have.
QString numberFormat(const QString &format)
{
    static const QStringList kShared{u"F"_s,      u"BEST"_s,    u"COMMA"_s,   u"COMMAX"_s,
                                     u"DOLLAR"_s, u"DOLLARX"_s, u"PERCENT"_s, u"Z"_s};
    if (!kShared.contains(stat::formatName(format))) {
        return {};
    }
    return format.contains(u'.') ? format : format + u'.';
}

} // namespace

void DataSetOutput::addKinds(const QVector<ColumnKind> &columns, DataSetParams *params)
{
    DefinitionList definitions(&params->variables);
    const auto addFormat = [&](ValueKind kind, const QString &format) {
        for (const QString &name : columnsOfKind(columns, kind)) {
            definitions.add(name, {}, format);
        }
    };
    addFormat(ValueKind::Date, u"DATE9."_s);
    addFormat(ValueKind::DateTime, u"DATETIME20."_s);
    addFormat(ValueKind::Time, u"TIME8."_s);
    params->toBoolean = columnsOfKind(columns, ValueKind::Boolean);
}

void DataSetOutput::addNotes(const QVector<ColumnNotes> &notes, DataSetParams *params) const
{
    DefinitionList definitions(&params->variables);
    qint64 labelled = 0;
    for (const ColumnNotes &note : notes) {
        definitions.add(note.column, note.label, numberFormat(note.format));
        labelled += note.valueLabels.isEmpty() ? 0 : 1;
    }
    if (labelled > 0) {
        MainUI::addLog(
            MainUI::Info,
            u"Note: the value labels of %1 are not written, because a %2 has no place for them\n"_s
                .arg(counted(labelled, u"column"_s), fileKind()));
    }
}

/// Definitions refer to the parameters, which do not change during a run.
void DataSetOutput::start()
{
    RowWriter::start();
    m_run = std::make_unique<RunState>();
    for (const VariableDefinition &defined : dataSetParams().variables) {
        m_run->definitions.try_emplace(defined.name,
                                       &defined); // of equal names the first one counts
    }
}

/// Made only for the first value of a warning: a text per cell would cost more than the cell.
QString DataSetOutput::placeOf(qint64 row, size_t column) const
{
    return u"row %1, column '%2'"_s.arg(QString::number(row), columnName(column));
}

const VariableDefinition *DataSetOutput::definitionOf(const QString &column) const
{
    const auto found = m_run->definitions.find(column);
    return found != m_run->definitions.end() ? found->second : nullptr;
}

/// Names and labels that the encoding does not have are counted for one warning.
QByteArray DataSetOutput::encoded(const QString &text, const QString &column)
{
    qint64 replaced = 0;
    QByteArray bytes = m_run->encoder.encode(text, &replaced);
    if (replaced > 0) {
        m_run->replacedInNames.add([&] { return column; });
    }
    return bytes;
}

/// The encoder chooses the cut, so that no character of several bytes is divided.
QByteArray DataSetOutput::encodedLabel(const QString &label, const QString &column)
{
    const QByteArray bytes = encoded(label, column);
    const qsizetype fitting = m_run->encoder.fit(bytes.constData(), bytes.size(), maxLabelBytes());
    if (fitting < bytes.size()) {
        m_run->cutLabels.add([&] { return column; });
    }
    return bytes.first(fitting);
}

void DataSetOutput::warnChangedNames(const QStringList &columns,
                                     const std::vector<sas::Variable> &variables)
{
    std::vector<ChangedName> changed;
    for (size_t i = 0; i < variables.size(); ++i) {
        const QString &column = columns[static_cast<qsizetype>(i)];
        if (variables[i].name != column.toUtf8()) {
            changed.push_back({column, QString::fromUtf8(variables[i].name)});
        }
    }
    if (!changed.empty()) {
        warn(
            u"Warning: writing %1 '%2': %3. The labels have the whole names, except of columns with a label of their own\n"_s
                .arg(fileKind(), fileName(), textOf(changed)));
    }
}

/// One warning for all columns: a table may have thousands of long labels.
void DataSetOutput::warnNames()
{
    const Occurrences &cut = m_run->cutLabels;
    if (cut.any()) {
        warn(
            u"Warning: writing %1 '%2': %3 %6 cut to %4 bytes; the first is that of the column '%5'\n"_s
                .arg(fileKind(), fileName(), counted(cut.count(), u"label"_s),
                     QString::number(maxLabelBytes()), cut.first(), isOrAre(cut.count())));
    }
    const Occurrences &replaced = m_run->replacedInNames;
    if (replaced.any()) {
        warn(
            u"Warning: writing %1 '%2': names and labels have characters that cannot be stored and were replaced (count: %3); the first is that of the column '%4'\n"_s
                .arg(fileKind(), fileName(), QString::number(replaced.count()), replaced.first()));
    }
}

void DataSetOutput::warnDefinitions(const OneRow &columns)
{
    const DataSetParams &params = dataSetParams();
    warnUnknown(fileKind(), kStringColumns, namesOf(params.stringColumns), columns);
    warnUnknown(fileKind(), kVariableDefinitions, namesOf(params.variables), columns);
    warnUnknown(fileKind(), shared::kToBoolean, params.toBoolean, columns);
}

/// What the format of a text column counts; None for a text.
sas::DateUnit DataSetOutput::dateUnitOf(const QString &column) const
{
    const VariableDefinition *const defined = definitionOf(column);
    switch (stat::dateKindOf(stat::Format::Sas, defined != nullptr ? defined->format : QString())) {
    case stat::DateKind::SasDate:
        return sas::DateUnit::Days;
    case stat::DateKind::SasDateTime:
    case stat::DateKind::SasDateOfSeconds:
        return sas::DateUnit::Seconds;
    case stat::DateKind::Time:
        return sas::DateUnit::Time;
    default:
        return sas::DateUnit::None;
    }
}

/// The width in StringColDef; 0 without one.
int DataSetOutput::declaredWidth(const QString &name) const
{
    const auto &all = dataSetParams().stringColumns;
    const auto found = std::ranges::find(all, name, &StringColumn::name);
    return found != all.end() ? found->width : 0;
}

/// Sets the bytes to which texts of a text column are cut while rows arrive.
bool DataSetOutput::chooseWidth(size_t column, sas::PackedColumn *packed)
{
    const int declared = declaredWidth(columnName(column));
    m_run->isMeasured[column] = declared == 0;
    packed->maxBytes = declared == 0 ? maxTextBytes() : std::min(declared, maxTextBytes());
    if (declared > maxTextBytes()) {
        warn(
            u"Warning: writing %1 '%2': the width %3 of the column '%4' is reduced to %5 bytes, the longest text of the format\n"_s
                .arg(fileKind(), fileName(), QString::number(declared), columnName(column),
                     QString::number(maxTextBytes())));
    }
    return declared > 0 || dataSetParams().autoWidth || failUnknownWidth(columnName(column));
}

/// Until the last row, the width of a text column is the limit at which its texts are cut.
/// measureWidths() replaces it where the parameters do not fix it.
bool DataSetOutput::findWidths(const OneRow &columns, const QVector<int> &inputs)
{
    std::vector<sas::PackedColumn> packed;
    m_run->isMeasured.resize(m_run->variables.size());
    for (size_t i = 0; i < m_run->variables.size(); ++i) {
        const int input = inputs[static_cast<qsizetype>(i)];
        sas::PackedColumn column{input, columns.getMetaType(input).cellType()};
        if (column.type == cell::Type::Text) {
            column.date = dateUnitOf(columnName(i));
            column.isBoolean = column.date == sas::DateUnit::None &&
                               dataSetParams().toBoolean.contains(columnName(i));
        }
        sas::Variable &variable = m_run->variables[i];
        variable.isText = column.isText();
        if (variable.isText) {
            if (!chooseWidth(i, &column)) {
                return false;
            }
            variable.width = column.maxBytes;
        }
        packed.push_back(column);
    }
    m_run->packer = std::make_unique<sas::RowPacker>(m_run->encoder, std::move(packed));
    return true;
}

bool DataSetOutput::begin(const OneRow &columns)
{
    // The order of the checks decides which of several mistakes is reported.
    QVector<int> inputs;
    if (!findTestColumn(columns) || !findColumns(columns, &inputs)) {
        return false;
    }
    if (inputs.isEmpty()) {
        return failWith(WriteProblem::NoColumns);
    }
    // The writer would say so only after the last row.
    if (inputs.size() > maxVariables()) {
        return failWriter({sas::Error::TooManyVariables, QString::number(inputs.size())});
    }
    for (const int input : std::as_const(inputs)) {
        m_run->names << columns.colName(input);
    }
    m_run->variables.resize(static_cast<size_t>(inputs.size()));
    if (!checkNames(columns, inputs) || !chooseEncoding() ||
        !describe(m_run->names, m_run->variables) || !findWidths(columns, inputs)) {
        return false;
    }
    warnDefinitions(columns);
    warnNames();
    return openTarget();
}

/// The rows go to the spool first, because the header of the file precedes them and needs their
/// number and the longest texts.
bool DataSetOutput::openTarget()
{
    m_run->spool = std::make_unique<BlockSpool>(BlockSpool::Options{
        .retryWrite = [this] { return askRetryWrite(m_run->spool->folder()); }});
    // Opened now, so that a target that cannot be written fails before the rows are read.
    createFolder(fileName());
    return m_run->target.open(fileName(), targetOptions(fileName())) ||
           failWith(WriteProblem::CannotOpen, {}, reasonOf(m_run->target));
}

/// The rows wait in a temporary file until all are known.
bool DataSetOutput::failSpool()
{
    const QString &folder = m_run->spool->folder();
    return failWrite(
        u"the rows cannot be kept in a temporary file in the folder '%1'"_s.arg(folder),
        failureReason(folder, FileUse::Write, m_run->spool->error()));
}

/// Moves the packed rows to the spool, which copies them.
bool DataSetOutput::spoolBlock()
{
    const auto stored = m_run->spool->put(m_run->packer->block());
    m_run->packer->clear();
    return stored || failSpool();
}

/// Reports the texts of the last row that did not fit. False when the action takes that as an
/// error.
bool DataSetOutput::reportCuts(const OneRow &row)
{
    for (const sas::CutText &cut : m_run->packer->cutTexts()) {
        const sas::PackedColumn &column = m_run->packer->columns()[cut.column];
        if (!reportCutText(columnName(cut.column), cut.bytes, column.maxBytes,
                           row.text(column.input))) {
            return false;
        }
    }
    return true;
}

bool DataSetOutput::writeRow(const OneRow &row)
{
    sas::RowPacker &packer = *m_run->packer;
    packer.add(row.getAllColForWrite(), rowNumber());
    ++m_run->rows;
    if (!packer.cutTexts().empty() && !reportCuts(row)) {
        return false;
    }
    return !packer.isFull() || spoolBlock();
}

/// Sets the widths that follow from the texts.
void DataSetOutput::measureWidths()
{
    for (size_t i = 0; i < m_run->variables.size(); ++i) {
        if (m_run->isMeasured[i]) { // never a column of numbers
            const int longest = static_cast<int>(
                std::min<qsizetype>(m_run->packer->reports()[i].longest, maxTextBytes()));
            // Not below the longest text, which is packed already: a factor may be below 1.
            const int width = std::max(measuredWidth(longest), longest);
            m_run->variables[i].width = std::clamp(width, 1, maxTextBytes());
        }
    }
}

/// Where the format sets a limit, the message says what the user can change.
bool DataSetOutput::failWriter(const Fault<sas::Error> &fault)
{
    switch (fault.code) {
    case sas::Error::TooManyVariables:
        return failWrite(u"the format cannot hold the %1 columns of the table; choose columns "
                         u"(writeAllColumns='0')"_s.arg(fault.detail));
    case sas::Error::TooManyRows:
        return failWrite(u"the format cannot hold the %1 rows of the table"_s.arg(fault.detail));
    case sas::Error::NamesTooLong:
        return failWrite(
            u"the names and labels of the columns have %1 bytes together, and other programs could not read the file; use shorter or fewer columns"_s
                .arg(fault.detail));
    case sas::Error::CannotWrite:
    case sas::Error::Library:
        break;
    }
    return failWrite(fault.detail, reasonOf(m_run->target));
}

/// The blocks come back in the order of the rows. Each one holds whole rows.
bool DataSetOutput::writeRows()
{
    if (!m_run->spool->rewind()) {
        return failSpool();
    }
    // A stop, or an error of another action, ends the loop; the target is then discarded.
    while (runIsGood()) {
        const auto block = m_run->spool->next();
        if (!block) {
            return failSpool();
        }
        if (!*block) {
            return true;
        }
        if (const auto added = m_run->writer->addRows(**block); !added) {
            return failWriter(added.fault());
        }
    }
    return false;
}

bool DataSetOutput::writeFile()
{
    // The last block is rarely full.
    const bool isSpooled = m_run->packer->block().empty() || spoolBlock();
    return isSpooled && beginFile() && writeRows() && finishFile();
}

bool DataSetOutput::beginFile()
{
    // All rows are known here: the header needs their number and the widths of the texts.
    measureWidths();
    m_run->writer = makeWriter(m_run->target, m_run->variables);
    const auto begun = m_run->writer->begin(m_run->rows);
    return begun || failWriter(begun.fault());
}

bool DataSetOutput::finishFile()
{
    const auto finished = m_run->writer->finish();
    return (finished || failWriter(finished.fault())) && commitTarget();
}

/// A failure before this point discards the target.
bool DataSetOutput::commitTarget()
{
    return m_run->target.commit() ||
           failWrite(u"the file cannot be completed"_s, reasonOf(m_run->target));
}

/// The counts are complete only now, and worth a warning only if there is a file.
void DataSetOutput::complete()
{
    if (writeFile()) {
        warnCutTexts();
        warnReplaced();
        warnNotNumbers();
        warnNotDates();
        warnZones();
        warnNotBooleans();
        reportRows(*m_run->writer);
    }
}

/// One warning per column and cause, with the number of values and the row of the first: a value
/// that became missing has no sign of what it was.
template <class TextOf>
void DataSetOutput::warnRows(sas::RowCount sas::ColumnReport::*cause, TextOf textOf)
{
    const std::vector<sas::ColumnReport> &reports = m_run->packer->reports();
    for (size_t i = 0; i < reports.size(); ++i) {
        const sas::RowCount &found = reports[i].*cause;
        if (found.count > 0) {
            warn(textOf(i, found));
        }
    }
}

void DataSetOutput::warnCutTexts()
{
    warnRows(&sas::ColumnReport::cut, [&](size_t column, const sas::RowCount &cut) {
        return u"Warning: writing %1 '%2': %3 of the column '%4' %7 cut to %5 bytes; the first is in row %6\n"_s
            .arg(fileKind(), fileName(), counted(cut.count, u"text"_s), columnName(column),
                 QString::number(m_run->packer->columns()[column].maxBytes),
                 QString::number(cut.firstRow), isOrAre(cut.count));
    });
}

/// One warning for all columns.
void DataSetOutput::warnReplaced()
{
    const std::vector<sas::ColumnReport> &reports = m_run->packer->reports();
    qint64 count = 0;
    size_t first = reports.size();
    for (size_t i = 0; i < reports.size(); ++i) {
        const sas::RowCount &replaced = reports[i].replaced;
        const bool isFirst =
            first == reports.size() || replaced.firstRow < reports[first].replaced.firstRow;
        first = replaced.count > 0 && isFirst ? i : first;
        count += replaced.count;
    }
    if (count > 0) {
        warn(u"Warning: writing %1 '%2': replaced %3 that cannot be stored; the first is in %4\n"_s
                 .arg(fileKind(), fileName(), counted(count, u"character"_s),
                      placeOf(reports[first].replaced.firstRow, first)));
    }
}

void DataSetOutput::warnNotNumbers()
{
    warnRows(&sas::ColumnReport::notNumbers, [&](size_t column, const sas::RowCount &found) {
        return u"Warning: writing %1 '%2': %3 of the column '%4' became missing (nan, not a number); the first is in row %5\n"_s
            .arg(fileKind(), fileName(), counted(found.count, u"value"_s), columnName(column),
                 QString::number(found.firstRow));
    });
}

/// Columns become dates because of their formats.
void DataSetOutput::warnNotDates()
{
    warnRows(&sas::ColumnReport::notDates, [&](size_t column, const sas::RowCount &found) {
        return u"Warning: writing %1 '%2': %3 of the column '%4' became missing, without the form of ISO 8601 that the format '%5' needs; the first is in row %6\n"_s
            .arg(fileKind(), fileName(), counted(found.count, u"text"_s), columnName(column),
                 definitionOf(columnName(column))->format, QString::number(found.firstRow));
    });
}

void DataSetOutput::warnZones()
{
    warnRows(&sas::ColumnReport::zones, [&](size_t column, const sas::RowCount &found) {
        return u"Warning: writing %1 '%2': %3 of the column '%4' %5 written without the zone Z; the first is in row %6\n"_s
            .arg(fileKind(), fileName(), counted(found.count, u"time"_s), columnName(column),
                 isOrAre(found.count), QString::number(found.firstRow));
    });
}

void DataSetOutput::warnNotBooleans()
{
    warnRows(&sas::ColumnReport::notBooleans, [&](size_t column, const sas::RowCount &found) {
        return u"Warning: writing %1 '%2': %3 of the column '%4' became missing, neither true nor false; the first is in row %5\n"_s
            .arg(fileKind(), fileName(), counted(found.count, u"text"_s), columnName(column),
                 QString::number(found.firstRow));
    });
}

/// Also after a failure, so that the temporary file does not outlive the run.
void DataSetOutput::release(bool)
{
    m_run.reset();
}

} // namespace corvanta
