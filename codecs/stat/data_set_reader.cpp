// The calls of the library during read(), and what the consumer of the rows sees:
//
//   metadata   once            encoding, number of rows
//   variable   per variable    columns; one that is not selected is skipped
//                              before the first value: onColumns() is called
//   value      per cell        row by row; nothing marks the end of a row
//   error      any time        messages, kept for the caller
//
// Every handler returns READSTAT_HANDLER_ABORT after a fault of our own, which `failure` keeps.
#include "codecs/stat/data_set_reader.h"

#include "codecs/stat/check/header_check.h"
#include "codecs/stat/date_text.h"
#include "codecs/stat/library_parser.h"

#include <algorithm>

namespace corvanta::stat {

/// The functions that the library calls.
struct DataSetReader::Handlers
{
    static DataSetReader &reader(void *context) { return *static_cast<DataSetReader *>(context); }

    static void attachTo(readstat_parser_t *parser)
    {
        readstat_set_metadata_handler(parser, onMetadata);
        readstat_set_variable_handler(parser, onVariable);
        readstat_set_value_handler(parser, onValue);
        readstat_set_error_handler(parser, onError);
    }
    static int onMetadata(readstat_metadata_t *metadata, void *context)
    {
        DataSetReader &self = reader(context);
        return noexceptCallback(self, [&] { return self.useMetadata(metadata); });
    }
    static int onVariable(int index, readstat_variable_t *variable, const char *labels,
                          void *context)
    {
        DataSetReader &self = reader(context);
        int result = READSTAT_HANDLER_ABORT;
        noexceptCallback(self, [&] {
            result = self.useVariable(index, variable, labels);
            return true;
        });
        return result;
    }
    static int onValue(int row, readstat_variable_t *variable, readstat_value_t value,
                       void *context)
    {
        DataSetReader &self = reader(context);
        return noexceptCallback(self, [&] { return self.putValue(row, variable, value); });
    }
    static int onLabel(const char *, readstat_value_t, const char *, void *) noexcept
    {
        return READSTAT_HANDLER_OK;
    }
    static void onError(const char *text, void *context)
    {
        DataSetReader &self = reader(context);
        noexceptCallback(self, [&] {
            self.addMessage(text);
            return true;
        });
    }
};

DataSetReader::DataSetReader(ByteSource &source, ReadOptions options, LabelSets labels)
    : m_options(std::move(options))
    , m_labelSets(std::move(labels))
    , m_isNulKept(m_options.format == Format::SpssSav && hasLongUtf8Texts(source))
    , m_input(source)
    , m_longTexts(m_options.format == Format::Stata ? LongTexts::of(source) : nullptr)
{
    if (m_longTexts) {
        m_longTexts->attachTo(&m_input);
    }
    if (m_options.format == Format::SpssPor) {
        m_input.setStart(distinctPorStart(source));
    }
}

DataSetReader::~DataSetReader() = default;

Result<void, Error> DataSetReader::read(RowRing &ring, const OnColumns &onColumns)
{
    int error = READSTAT_OK;
    noexceptCallback(*this, [&] {
        error = parse(ring, onColumns);
        return true;
    });
    return outcome(error);
}

int DataSetReader::parse(RowRing &ring, const OnColumns &onColumns)
{
    m_ring = &ring;
    m_onColumns = &onColumns;
    LibraryParser parser(m_input);
    Handlers::attachTo(parser.handle());
    readstat_set_row_offset(parser.handle(), static_cast<long>(m_options.skippedRows));
    if (m_options.format == Format::SpssSav) {
        // Without it, the library ignores which variables of long texts have labels.
        readstat_set_value_label_handler(parser.handle(), Handlers::onLabel);
    }
    if (m_isNulKept) {
        // The name is that of the same encoding, but the library knows it only in capitals.
        readstat_set_file_character_encoding(parser.handle(), "utf-8");
    }
    return parser.parse(m_options.format, this);
}

/// What a call of the library has led to. The last row is complete unless the call failed.
Result<void, Error> DataSetReader::outcome(int error)
{
    if (failure) {
        return *failure;
    }
    if (m_longTexts && m_longTexts->fault()) {
        return *m_longTexts->fault();
    }
    if (m_ring->tooLargeBytes() > 0) {
        return Fault{Error::RowTooLarge, QString::number(m_ring->tooLargeBytes())};
    }
    if (m_input.hasFailed()) {
        return Fault{Error::Unreadable};
    }
    if (error == READSTAT_ERROR_USER_ABORT && !m_isAtLimit) {
        return Fault{Error::Stopped};
    }
    if (error != READSTAT_OK && !m_isAtLimit) {
        return Fault{Error::Library, messageOf(static_cast<readstat_error_t>(error))};
    }
    if (!m_maker) { // neither rows nor variables
        announceColumns();
    }
    endRow();
    return {};
}

// ---- Before the rows.

bool DataSetReader::useMetadata(readstat_metadata_t *metadata)
{
    m_variableCount = readstat_get_var_count(metadata);
    m_missing = m_options.columns;
    useRowCount(metadata->row_count);
    // A portable file has its own encoding, but an unknown name is an error for it, too.
    return openDecoder(m_options.encoding) &&
           openDecoder(encodingOf(m_options.format, m_options.encoding, metadata));
}

/// The dictionary has the rows of the file, the progress counts only those that are wanted.
void DataSetReader::useRowCount(qint64 rows)
{
    m_dictionary.rows = rows;
    m_rowsExpected = m_options.maxRows > 0 && rows >= 0 ? std::min(rows, m_options.maxRows) : rows;
}

bool DataSetReader::openDecoder(const QString &encoding)
{
    m_dictionary.encoding = encoding;
    m_decoder = TextDecoder::open(encoding);
    return m_decoder || refuse({Error::UnknownEncoding, encoding});
}

/// End the parsing with a fault of our own. Returns false.
bool DataSetReader::refuse(Fault<Error> fault)
{
    failure = std::move(fault);
    return false;
}

/// Variables that are not selected are skipped by the library, which saves the conversion of their
/// values. m_columnOf has an entry for each, because values come with the index in the file.
int DataSetReader::useVariable(int index, readstat_variable_t *handle, const char *labelSet)
{
    Variable variable;
    variable.name = m_decoder->decodeCut(readstat_variable_get_name(handle));
    variable.label = m_decoder->decodeCut(readstat_variable_get_label(handle));
    variable.format = m_decoder->decodeCut(readstat_variable_get_format(handle));
    const QString set = m_decoder->decodeCut(labelSet);
    // SAS gives the format, and the catalogue has only its name.
    variable.labelSet = isOfSas(m_options.format) ? formatName(set) : set;
    variable.isText = readstat_variable_get_type_class(handle) == READSTAT_TYPE_CLASS_STRING;
    const readstat_type_t type = readstat_variable_get_type(handle);
    variable.isInteger =
        type == READSTAT_TYPE_INT8 || type == READSTAT_TYPE_INT16 || type == READSTAT_TYPE_INT32;
    if (!variable.isText) {
        variable.date = dateKindOf(m_options.format, variable.format);
    }
    const bool isSelected =
        m_options.columns.isEmpty() || m_options.columns.contains(variable.name);
    m_columnOf.resize(static_cast<size_t>(index) + 1, -1);
    if (isSelected) {
        m_missing.removeAll(variable.name);
        m_columnOf.back() = static_cast<int>(m_columns.size());
        addColumn(variable, handle);
    } else {
        m_skipped << variable.name;
    }
    if (index + 1 == m_variableCount) {
        announceColumns();
    }
    return isSelected ? READSTAT_HANDLER_OK : READSTAT_HANDLER_SKIP_VARIABLE;
}

/// Labels and dates make a column of texts: its values without a label are printed.
void DataSetReader::addColumn(const Variable &variable, readstat_variable_t *handle)
{
    ColumnPlan plan;
    plan.name = m_options.columnName(variable);
    plan.labels = m_options.extractLabels ? labelsOf(variable) : nullptr;
    plan.date = m_options.formatDates ? variable.date : DateKind::None;
    plan.hasMissingRanges = readstat_variable_get_missing_ranges_count(handle) > 0;
    plan.longTextAt =
        m_longTexts ? m_longTexts->offsetInRow(readstat_variable_get_index(handle)) : -1;
    const bool isText = variable.isText || plan.labels != nullptr || plan.date != DateKind::None;
    plan.type = isText ? cell::Type::Text : cell::Type::Double;
    m_columns.push_back(std::move(plan));
    m_dictionary.variables.push_back(variable);
}

/// The labels of a variable; null: it has none.
const ValueLabels *DataSetReader::labelsOf(const Variable &variable)
{
    const auto set = m_labelSets.find(variable.labelSet);
    if (set == m_labelSets.end()) {
        return nullptr;
    }
    auto &labels = m_labels[variable.labelSet];
    if (!labels) {
        labels = std::make_unique<ValueLabels>(set->second);
    }
    return labels.get();
}

/// The consumer waits for the columns before it takes rows, so this comes before the first row.
void DataSetReader::announceColumns()
{
    if (!m_decoder) { // an empty file of a format without metadata
        m_decoder.emplace(*TextDecoder::open(QStringLiteral("UTF-8")));
    }
    m_maker.emplace(*m_ring, *m_decoder, m_columns, m_longTexts.get(),
                    m_options.format == Format::SpssPor);
    (*m_onColumns)(m_dictionary);
}

/// A damaged file can give a message per row: the first hundred suffice.
void DataSetReader::addMessage(const char *text)
{
    constexpr qsizetype kMaxMessages = 100;
    if (m_messages.size() < kMaxMessages) {
        m_messages << QString::fromUtf8(text).trimmed();
    }
}

// ---- Rows.

inline bool DataSetReader::putValue(qint64 row, readstat_variable_t *variable,
                                    const readstat_value_t &value)
{
    if (row != m_row && !beginRow(row)) {
        return false;
    }
    const auto index = static_cast<size_t>(readstat_variable_get_index(variable));
    const int column = index < m_columnOf.size() ? m_columnOf[index] : -1;
    return column < 0 || m_maker->put(column, value, variable);
}

/// Complete the row before and begin the next one. Returns false when no more rows are wanted.
bool DataSetReader::beginRow(qint64 row)
{
    if (!m_maker) {
        announceColumns();
    }
    endRow();
    m_isAtLimit = m_options.maxRows > 0 && rowsRead() >= m_options.maxRows;
    if (m_isAtLimit || !m_maker->begin(row)) {
        return false;
    }
    m_row = row;
    return true;
}

/// The library does not report the end of a row: the value of the next row, or the end of the file
/// does.
void DataSetReader::endRow()
{
    if (m_row >= 0) {
        m_ring->endRow();
        m_row = -1;
        m_rowsRead.store(rowsRead() + 1, std::memory_order_relaxed);
    }
}

const Findings &DataSetReader::findings() const
{
    static const Findings kNone;
    return m_maker ? m_maker->findings() : kNone;
}

float DataSetReader::fractionDone() const
{
    const qint64 rows = m_rowsExpected;
    return rows > 0 ? std::min(1.0F, static_cast<float>(rowsRead()) / static_cast<float>(rows))
                    : m_input.fractionRead();
}

Result<Dictionary, Error> readDictionary(ByteSource &source, const ReadOptions &options)
{
    RowRing ring(1); // too small for a row: reading ends at the first one
    DataSetReader reader(source, options, {});
    bool isKnown = false;
    const auto done = reader.read(ring, [&](const Dictionary &) { isKnown = true; });
    if (!isKnown) {
        return done.fault();
    }
    return reader.dictionary();
}

} // namespace corvanta::stat
