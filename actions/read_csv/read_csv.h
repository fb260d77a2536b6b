// readCSV: reads rows from a text file with separators (RFC 4180, UTF-8).
//
// Without `types` every column is a text, so that no value of the file is changed. The action opens
// its file in the first call of the run function and not in init, so that opening a slow file does
// not delay the start of the other actions.
#pragma once
#include "base/occurrences.h"
#include "codecs/csv/record_reader.h"
#include "corvanta/action_base.h"
#include "corvanta/files.h"
#include "corvanta/input_source.h"

#include <atomic>
#include <memory>

namespace corvanta {

extern const ActionEntry kReadCsvEntry;

/// Parameters as saved; see ActionReadCsv::paramTable() for their meaning. `types` and `sortedOn`
/// are lists separated by commas.
struct ReadCsvParams
{
    QString fileName;
    QString separator = QStringLiteral(",");
    QString types;
    bool header = true;
    QString sortedOn;
};

/// Reads one file, plain or compressed. Errors end the run and name line and column.
/// Threads: see ActionItem; computeCompletion() reads the two atomics.
class ActionReadCsv final : public ParamAction<ActionReadCsv, ReadCsvParams>
{
public:
    ActionReadCsv(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadCsvParams> &paramTable();
    QVector<ParameterProblem> problems() const override;
    /// Threads: any. Unknown for pipes.
    float computeCompletion() override;

private:
    void start() override;
    bool step() override;
    void finish() override;

    // All functions that return bool return false when there is nothing more to do, also after a
    // failure, which they have logged.
    // Order of calls: open(), describeColumns(), then nextRecord() and emitRow() for each row.
    bool open();
    Result<std::unique_ptr<ByteSource>, input::OpenError> openFile();
    /// Also sets m_types, on which all cells depend.
    bool describeColumns();
    /// Of the current record: its fields, or C1, C2, ... without a header.
    QVector<QString> columnNames() const;
    /// From `types`; fails for unknown letters and for more letters than columns.
    bool chooseTypes(qsizetype columns);
    /// The order is declared and not checked: checking would need a comparison per row.
    bool declareSortOrder(OneRow *row);
    /// The record is in m_reader until the next call.
    bool nextRecord();
    bool emitRow();
    /// Convert one field; an empty one without quotes is a missing cell.
    bool putCell(int column, const csv::Field &field, OneRow *row, RowBuffer *buffer);
    /// Called for the only column of a file.
    void warnSeparator(const QString &name);
    void warnLineEnds();
    /// For a record that is not UTF-8.
    void countIllFormed();
    void countTooLarge(int column, const csv::Field &field);
    // One warning for all of them, when the run has read its last row.
    void reportIllFormed();
    void reportTooLarge();
    // Log the error with its place in the file. Return false.
    bool failRecord(csv::Error code);
    bool failCell(const csv::Field &field, const QString &column, MetaInfo::MetaTypeColumn type);

    // All of the state below is reset by start().
    QString m_name;                                   // of the file, expanded
    std::unique_ptr<ByteSource> m_file;               // must outlive m_reader
    const input::InputSource *m_compressed = nullptr; // the compressed file in m_file, or null
    const MyReadFile *m_plain = nullptr;              // the file in m_file otherwise
    std::unique_ptr<csv::RecordReader> m_reader;
    bool m_described = false;   // the columns are declared
    bool m_firstIsData = false; // the current record is a row and not yet sent
    QVector<MetaInfo::MetaTypeColumn> m_types;
    Occurrences m_illFormed;         // texts that are not UTF-8
    Occurrences m_tooLarge;          // numbers that became infinite
    std::atomic<qint64> m_size = -1; // in the unit of m_done; -1: not known
    std::atomic<qint64> m_done = 0;  // bytes read, of a compressed file compressed ones
};

} // namespace corvanta
