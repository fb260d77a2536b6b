// readers/read_parquet.h
// readParquet: rows from Parquet files.
#pragma once
#include "actions/read_parquet/read_parquet_params.h"
#include "codecs/parquet/table_reader.h"
#include "corvanta/action_base.h"
#include "io/input/input_file.h"

#include <memory>
#include <mutex>

namespace corvanta {

class ActionReadParquet final : public ParamAction<ActionReadParquet, ReadParquetParams>
{
public:
    ActionReadParquet(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadParquetParams> &paramTable() { return readParquetParamTable(); }
    static int pinsInFor(const ReadParquetParams &params)
    {
        return params.columnSelection == 2 ? 2 : params.fileNameFromPin ? 1 : 0;
    }
    float computeCompletion() override;
    void wakeAll() override;

private:
    /// One file and what it is read with. Members go in reverse order: each uses those above it.
    struct OpenFile
    {
        QString name;
        std::unique_ptr<InputFile> input;
        QByteArray unpacked; // of inputs that cannot jump
        std::unique_ptr<MemorySource> memory;
        std::unique_ptr<parquet::TableReader> reader;
        std::vector<const uchar *> cells; // of the next row
        bool hasRow = false;
    };
    enum class Opening { Done, Missing, Unreadable, Failed };

    void start() override;
    bool step() override;
    void finish() override;

    bool prepare();
    bool readSelection();
    bool listInputs();
    bool openNextFile();
    Opening openFile(const QString &name);
    ByteSource *sourceOf(OpenFile &file);
    Opening unreadable(const QString &name, const Fault<parquet::Error> &fault);
    bool handleMissing(const QString &name);
    bool describeColumns();
    void warnSkipped();
    bool checkColumns();
    bool putRow();
    bool finishFile();
    bool failInside(const Fault<parquet::Error> &fault);
    void setCurrent(std::unique_ptr<OpenFile> file);

    QStringList m_files;
    qsizetype m_nextFile = 0;
    bool m_isPrepared = false;
    bool m_hasColumns = false;
    parquet::ReadOptions m_options;
    QVector<QString> m_names; // of the first file
    QVector<MetaInfo> m_types;

    std::mutex m_mutex;
    std::unique_ptr<OpenFile> m_current; // replaced under m_mutex, by the thread that runs
    float m_filesDone = 0;               // guarded by m_mutex
};

} // namespace corvanta
