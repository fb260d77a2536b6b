// readers/read_xbf.h
// ReadXBF: rows from tables of the dBase family.
#pragma once
#include "codecs/dbf/table_reader.h"
#include "corvanta/action_base.h"
#include "io/input/input_file.h"
#include "readers/read_xbf_params.h"

#include <atomic>
#include <memory>

namespace corvanta {

class ActionReadXBF final : public ParamAction<ActionReadXBF, ReadXbfParams>
{
public:
    ActionReadXBF(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadXbfParams> &paramTable() { return readXbfParamTable(); }
    float computeCompletion() override { return m_completion.load(std::memory_order_relaxed); }

private:
    /// One table and what it is read from. Members go in reverse order: each uses those above it.
    struct Table
    {
        QString file;
        std::unique_ptr<InputFile> input;
        std::unique_ptr<InputFile> memoInput;
        std::unique_ptr<dbf::MemoFile> memo;
        std::unique_ptr<dbf::TableReader> reader;
    };
    /// State of one run; made anew by start().
    struct RunState
    {
        explicit RunState(dbf::TextDecoder textDecoder)
            : decoder(std::move(textDecoder))
        {
        }
        dbf::TextDecoder decoder;
        QStringList files;
        qsizetype nextFile = 0;
        std::unique_ptr<Table> table; // null behind the last one
        QVector<QString> names;       // of the first table
        QVector<MetaInfo> types;
        int rowsSinceProgress = 0;
    };
    enum class Opening { Done, Missing, Failed };

    void start() override;
    bool step() override;
    void finish() override;

    dbf::TextDecoder makeDecoder() const;
    Opening openTable(const QString &file);
    bool openMemo(Table *table);
    bool openNextTable();
    bool checkColumns();
    bool putRow();
    bool finishTable();
    bool drainInput();
    void warnFindings();
    bool failOnTable(const Table &table, const Fault<dbf::Error> &fault);
    void updateCompletion();

    std::unique_ptr<RunState> m_run;
    std::atomic<float> m_completion = -1.0F;
};

} // namespace corvanta
