// host/src/builtin/read_csv.h
// readCSV: rows from a text file with separators (RFC 4180, UTF-8).
#pragma once
#include "codecs/gzip/input_source.h"
#include "corvanta/action_base.h"
#include "corvanta/files.h"

#include <atomic>
#include <memory>
#include <vector>

namespace corvanta {

struct ReadCsvParams
{
    QString fileName;
    QString separator = QStringLiteral(",");
    QString types;
    bool header = true;
    QString sortedOn;
};

class ActionReadCsv final : public ParamAction<ActionReadCsv, ReadCsvParams>
{
public:
    ActionReadCsv(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadCsvParams> &paramTable();
    float computeCompletion() override;

private:
    /// One field of the record at hand; `text` points into the block or the scratch.
    struct Field
    {
        const char *text;
        qsizetype size;
        bool quoted;
    };
    enum class Scan { Record, NeedMore, End, Bad };

    void start() override;
    bool step() override;
    void finish() override;

    bool open();
    bool openFile();
    bool describeColumns();
    bool nextRecord();
    Scan scanRecord();
    const char *scanQuoted(const char *at, const char *end);
    bool refill();
    bool emitRow();
    bool putCell(int column, const Field &field, OneRow *row);

    QString m_name;
    char m_separator = ',';
    std::unique_ptr<ByteSource> m_file;
    const input::InputSource *m_packed = nullptr; // m_file, when it unpacks
    std::vector<char> m_block;
    size_t m_at = 0;         // next byte of the block
    size_t m_fill = 0;       // bytes in the block
    bool m_isAtStart = true; // of the file
    bool m_fileEnded = false;
    bool m_described = false;
    bool m_firstIsData = false;
    std::vector<Field> m_fields;
    std::vector<char> m_scratch; // quoted fields with their doubled quotes undone
    QVector<MetaInfo::MetaTypeColumn> m_types;
    qint64 m_line = 1;     // of the record at hand
    qint64 m_nextLine = 1; // of the one behind it
    std::atomic<qint64> m_size = -1;
    std::atomic<qint64> m_done = 0;
};

} // namespace corvanta
