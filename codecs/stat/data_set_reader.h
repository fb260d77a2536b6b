// Reads a statistical data set with the library: first the variables, then the rows.
//
//     DataSetReader reader(source, options, labels);
//     auto done = reader.read(ring, onColumns);   // on a thread of its own; the consumer takes
//     rows
//
// The library calls handlers while it parses, so the whole file is one call.
#pragma once
#include "base/byte_source.h"
#include "codecs/stat/dictionary.h"
#include "codecs/stat/error.h"
#include "codecs/stat/library_source.h"
#include "codecs/stat/row_maker.h"
#include "codecs/stat/row_ring.h"

#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace corvanta::stat {

struct ReadOptions
{
    Format format = Format::Sas;
    QString encoding = QStringLiteral("UTF-8"); ///< any other name overrides that of the file
    bool namesFromLabels = false;               ///< columns are named after the variables' labels
    bool extractLabels = false;                 ///< cells are the labels of labelled values
    bool formatDates = false;                   ///< cells of dates and times are ISO 8601 text
    QStringList columns;                        ///< names of the variables to read; empty: all
    qint64 skippedRows = 0;                     ///< rows before the first one that is read
    qint64 maxRows = 0;                         ///< rows after which reading ends; 0: no limit

    /// The name of the column of a variable.
    QString columnName(const Variable &variable) const
    {
        return namesFromLabels && !variable.label.isEmpty() ? variable.label : variable.name;
    }
};

/// For one file. Threads: read() on one thread; the functions marked "any" from any, at any time;
/// the others after read() has returned.
class DataSetReader
{
public:
    /// `source` seeks at no cost and outlives the reader, as the ring does. `labels` are those of
    /// the file or of a catalogue; without extractLabels none are needed.
    DataSetReader(ByteSource &source, ReadOptions options, LabelSets labels);
    ~DataSetReader();

    /// Called once, on the thread of read(), when the variables are known and before the first row.
    using OnColumns = std::function<void(const Dictionary &)>;

    /// Put the rows into `ring`; does not call RowRing::finish(). Cells may refer to the reader.
    /// Errors: Library, Unreadable, RowTooLarge, UnknownEncoding, Stopped, NoMemory.
    Result<void, Error> read(RowRing &ring, const OnColumns &onColumns);

    /// Valid after onColumns.
    const Dictionary &dictionary() const { return m_dictionary; }
    /// The type of each column.
    const std::vector<ColumnPlan> &columns() const { return m_columns; }
    /// Names of ReadOptions::columns that the file does not have.
    const QStringList &missingColumns() const { return m_missing; }
    /// Names of the variables that are not selected.
    const QStringList &skippedColumns() const { return m_skipped; }
    /// Messages of the library, in order. At most a hundred.
    const QStringList &messages() const { return m_messages; }
    const Findings &findings() const;
    /// Rows that were put into the ring.
    qint64 rowsRead() const { return m_rowsRead.load(std::memory_order_relaxed); }
    /// Fraction of the file that was read, 0 to 1. Threads: any.
    float fractionDone() const;

    /// For noexceptCallback().
    std::optional<Fault<Error>> failure;

private:
    struct Handlers;

    int parse(RowRing &ring, const OnColumns &onColumns);
    // For the handlers. Functions that return a bool return true to continue.
    bool useMetadata(readstat_metadata_t *metadata);
    void useRowCount(qint64 rows);
    bool openDecoder(const QString &encoding);
    bool refuse(Fault<Error> fault);
    /// Returns the code by which the library reads or skips the values of the variable.
    int useVariable(int index, readstat_variable_t *variable, const char *labelSet);
    bool putValue(qint64 row, readstat_variable_t *variable, const readstat_value_t &value);
    bool beginRow(qint64 row);
    void endRow();
    // `variable` is as decoded, the handle is that of the library.
    void addColumn(const Variable &variable, readstat_variable_t *variableHandle);
    const ValueLabels *labelsOf(const Variable &variable);
    void announceColumns();
    void addMessage(const char *text);
    /// `error` is what the library has returned.
    Result<void, Error> outcome(int error);

    const ReadOptions m_options;
    const LabelSets m_labelSets;
    const bool m_isNulKept; // see hasLongUtf8Texts()
    LibrarySource m_input;
    const std::unique_ptr<LongTexts> m_longTexts; // null: the file has none
    std::optional<TextDecoder> m_decoder;
    Dictionary m_dictionary;
    QStringList m_missing;
    QStringList m_skipped;
    QStringList m_messages;
    std::vector<int> m_columnOf; // by index of the variable in the file; -1: not selected
    std::vector<ColumnPlan> m_columns;
    std::unordered_map<QString, std::unique_ptr<ValueLabels>> m_labels;
    int m_variableCount = 0; // of the file
    // Only during read().
    RowRing *m_ring = nullptr;
    const OnColumns *m_onColumns = nullptr;
    std::optional<RowMaker> m_maker; // set when the columns are known
    qint64 m_row = -1;               // number of the current row; -1: none
    bool m_isAtLimit = false;        // maxRows is reached
    std::atomic<qint64> m_rowsRead = 0;
    std::atomic<qint64> m_rowsExpected = -1;
};

/// The dictionary of a data set that has passed checkHeader(), without its rows. `source` seeks at
/// no cost; its position changes. Errors: those of DataSetReader::read() before the first row.
Result<Dictionary, Error> readDictionary(ByteSource &source, const ReadOptions &options);

} // namespace corvanta::stat
