// readCSV: reads rows from a text file with separators (RFC 4180, UTF-8).
#pragma once
#include "codecs/csv/record_reader.h"
#include "corvanta/action_base.h"
#include "corvanta/files.h"
#include "corvanta/input_source.h"

#include <atomic>
#include <memory>

namespace corvanta {

/// Parameters as saved; see ActionReadCsv::paramTable() for their meaning.
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
    float computeCompletion() override;

private:
    void start() override;
    bool step() override;
    void finish() override;

    // All functions that return bool return false when there is nothing more to do, also after a
    // failure, which they have logged.
    bool open();
    std::unique_ptr<ByteSource> openFile();
    bool describeColumns();
    QVector<QString> columnNames() const;
    bool chooseTypes(qsizetype columns);
    bool declareSortOrder(OneRow *row);
    bool nextRecord();
    bool emitRow();
    bool putCell(int column, const csv::Field &field, OneRow *row);
    bool failRecord(csv::Error code);
    bool failCell(const csv::Field &field, const QString &column, MetaInfo::MetaTypeColumn type);

    QString m_name; // of the file, expanded
    std::unique_ptr<ByteSource> m_file;
    const input::InputSource *m_compressed = nullptr; // the compressed file in m_file, or null
    std::unique_ptr<csv::RecordReader> m_reader;
    bool m_described = false;   // the columns are declared
    bool m_firstIsData = false; // the current record is a row and not yet sent
    QVector<MetaInfo::MetaTypeColumn> m_types;
    std::atomic<qint64> m_size = -1; // in the unit of m_done; -1: not known
    std::atomic<qint64> m_done = 0;  // bytes read, of a compressed file compressed ones
};

} // namespace corvanta
