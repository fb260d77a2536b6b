// join: joins the rows of two tables that have equal keys.
//
// The second table (input pin 1) is read into a hash table, then the first one is read and its rows
// look up their partners. Rows keep the order of the first table; the partners of a row keep that
// of the second. Rows of the second table without a partner come last. A second table that does not
// fit into memory is joined by PartitionedJoin; the output is the same.
#pragma once
#include "actions/join/join_layout.h"
#include "actions/join/partitioned_join.h"

#include <memory>
#include <vector>

namespace corvanta {

extern const ActionEntry kJoinEntry;

/// Threads: as ActionBase.
class ActionJoin final : public ParamAction<ActionJoin, JoinParams>
{
public:
    ActionJoin(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<JoinParams> &paramTable() { return joinParamTable(); }
    QVector<ParameterProblem> problems() const override;

private:
    /// Each one works on the rows of one table, or sends rows that it finds without input.
    enum class Stage { TakeSecond, TakeFirst, SendAlone, JoinParts, SendJoined };
    /// Everything of one run, from begin() to finish().
    struct RunState
    {
        explicit RunState(JoinLayout found)
            : layout(std::move(found))
            , firstKey(layout.firstKey)
            , secondKey(layout.secondKey)
            , firstCells(layout.firstTypes.size())
            , keptCells(layout.kept.size())
        {
        }
        JoinLayout layout;
        // Make bytes of the keys: equal ones for equal values, whatever their types are.
        rows::KeyEncoder firstKey;
        rows::KeyEncoder secondKey;
        rows::RowTable table;                   // of the second table
        std::vector<bool> hasPartner;           // by row of `table`
        std::unique_ptr<PartitionedJoin> parts; // set when `table` was full
        std::vector<char> bytes;                // of one row
        // Pointers of one row.
        std::vector<const uchar *> firstCells;
        std::vector<const uchar *> keptCells;
    };

    void start() override;
    bool step() override;
    void finish() override { m_run.reset(); }

    // These return false after a failure.
    /// Find the columns and describe the output.
    bool begin();
    bool stepStage();
    // One row of a stage; the last one sets the next stage, or returns false.

    /// Put a row of the second table into the hash table, or into a part.
    bool takeSecond();
    /// Join a row of the first table, or put it into a part.
    bool takeFirst();
    /// Send the next row of the hash table that has no partner.
    bool sendAlone();
    /// Join one of the parts.
    bool joinPart();
    /// Send the next row of the parts.
    bool sendJoined();

    // What these stages do with a row; an empty key is one with a missing cell.

    bool keepSecond(const OneRow &row);
    /// The hash table is full: continue with a PartitionedJoin, which gets its rows.
    bool moveToParts();
    bool putFirst(const OneRow &row, std::string_view key);
    /// Send a row of the first table with each of its partners.
    void joinFirst(const OneRow &row, std::string_view key);
    /// Send a row of the output. A table without its row has a null pointer.
    void send(const uchar *const *first, const char *second);
    // Fail the run and return false.

    /// A column that is compared as numbers has a text; `number` is that of the row, from 1.
    bool failKey(const QString &table, qint64 number, const OneRow &row, int column);
    bool failParts();

    // The first row of each table, until it is taken.
    const OneRow *m_first = nullptr;
    const OneRow *m_second = nullptr;
    Stage m_stage = Stage::TakeSecond;
    qint64 m_firstRows = 0; // taken
    qint64 m_secondRows = 0;
    int m_nextAlone = 0; // row of the table
    std::unique_ptr<RunState> m_run;
};

} // namespace corvanta
