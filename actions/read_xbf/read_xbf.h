// readers/read_xbf.h
// ReadXBF: rows from tables of the dBase family.
#pragma once
#include "actions/read_xbf/read_xbf_params.h"
#include "codecs/dbf/table_reader.h"
#include "corvanta/action_base.h"
#include "io/input/input_file.h"

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
    /// A file that cannot be read on once the run is over: a long read ends with it.
    struct Input final : ByteSource
    {
        Input(const ActionReadXBF &action, const QString &fileName)
            : name(fileName)
            , file(action.globalParameters(), fileName, false)
            , m_action(action)
        {
        }
        qint64 read(void *buffer, qint64 n) override
        {
            return m_action.runIsGood() ? file.read(buffer, n) : -1;
        }
        qint64 size() override { return file.size(); }
        bool seek(qint64 offset) override { return file.seek(offset); }

        const QString name; ///< as it was asked for
        InputFile file;

    private:
        const ActionReadXBF &m_action;
    };
    /// One table and what it is read from. Members go in reverse order: each uses those above it.
    struct Table
    {
        std::unique_ptr<Input> input;
        std::unique_ptr<Input> memoInput;
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
        int recordsSinceProgress = 0;
    };
    enum class Opening { Done, Missing, Failed };

    void start() override;
    bool step() override;
    void finish() override;

    dbf::TextDecoder makeDecoder() const;
    Opening openTable(const QString &file);
    void openMemo(Table *table);
    bool openNextTable();
    bool checkColumns();
    bool putRow();
    bool finishTable();
    bool drainInput();
    void warnFindings();
    bool failOnInput(const Input &input, const QString &otherwise);
    bool failOnTable(const Table &table, const Fault<dbf::Error> &fault);
    void updateCompletion();

    std::unique_ptr<RunState> m_run;
    std::atomic<float> m_completion = -1.0F;
};

} // namespace corvanta
