// One open file of readCSV: its columns, its rows, and the messages about its content.
#pragma once
#include "actions/read_csv/csv_dates.h"
#include "actions/read_csv/read_csv_params.h"
#include "actions/shared/file_series.h"
#include "base/occurrences.h"
#include "io/input/run_input.h"

#include <memory>
#include <vector>

namespace corvanta {

/// Threads: see SeriesFile.
class CsvFile final : public SeriesFile
{
public:
    /// Open the file `name` and read its first record. `action` and `form` must outlive the file.
    static FileSeries::Opened open(ActionBase &action, const QString &name, const CsvForm &form);

    /// From the first record: its fields, or C1, C2, ... without a header.
    static QVector<QString> columnNames(const csv::RecordReader &records, const CsvForm &form);

    /// Without any for an empty file.
    TableSchema columns() const override { return m_schema; }
    /// Empty lines are skipped in tables with several columns.
    bool next(OneRow &row, Found *found) override;
    /// One message per cause, for all that was replaced, dropped or assumed.
    void beforeClose() override;
    /// Of the bytes of the file, packed ones if it is packed; negative for a pipe.
    float fractionDone() const override { return m_input.file.getProgress(); }

private:
    /// How the fields of a column become cells.
    enum class CellForm : quint8 {
        Text,
        Key,
        Double,
        LocalDouble, ///< a number with another decimal point
        Date,        ///< a text that m_dates convert
    };

    CsvFile(ActionBase &action, const QString &name, const CsvForm &form);

    // Functions that return a bool return false when the run has failed or ended.
    /// Read the first record, name the columns, and choose their forms.
    bool begin();
    /// Set the types of the columns. Fails if there are more letters than columns.
    bool chooseForms();
    /// Fails for a date column that the file does not have, or that is not a text.
    bool chooseDates();
    void warnForm();
    /// Put the current record into `row`.
    bool putRow(OneRow &row, Found *found);
    /// Decide about a record with another number of fields than there are columns: an empty line,
    /// a row to fill or to cut, or a failure.
    bool acceptRagged(std::span<const csv::Field> fields, Found *found);
    // Set the cell of a column (0-based). `buffer` holds the cells that are not numbers.
    bool putCell(int column, const csv::Field &field, OneRow &row, RowBuffer *buffer);
    bool putNumber(int column, const csv::Field &field, OneRow &row, RowBuffer *buffer);
    void putDate(int column, const csv::Field &field, OneRow &row, RowBuffer *buffer);
    /// Whether a field without quotes is one of the texts that mean a missing value.
    bool isNull(const csv::Field &field) const;
    /// The current line and a column, for messages.
    QString place(int column) const;
    // Counted here, reported by beforeClose().
    void countIllFormed();
    void countTooLarge(int column, const csv::Field &field);
    void reportEncoding();
    // Fail the run and return false.
    bool failRecord(const Fault<csv::Error> &fault);
    bool failCell(int column, const csv::Field &field);

    ActionBase &m_action;
    const QString m_name;
    const CsvForm &m_form;
    RunInput m_input;
    std::unique_ptr<csv::TextReader> m_text; // reads m_input
    csv::RecordReader *m_records = nullptr;  // of m_text
    bool m_isFirstData = false;              // the current record is a row and not yet delivered
    TableSchema m_schema;
    std::vector<CellForm> m_forms;     // by column
    std::vector<CsvDates *> m_datesOf; // by column; null: no dates
    std::vector<std::unique_ptr<CsvDates>> m_dates;
    Occurrences m_illFormed; // texts that are not UTF-8
    qint64 m_illFormedBytes = 0;
    Occurrences m_tooLarge;  // numbers that became infinite
    Occurrences m_notDates;  // texts that do not have the date format
    Occurrences m_shortRows; // filled
    Occurrences m_longRows;  // whose last fields are dropped
};

} // namespace corvanta
