// The stages follow each other: the second table is kept, the first one is joined with it row by
// row, and rows of the second one without a partner are sent. When the second table does not fit,
// the last two are replaced by those of PartitionedJoin. Each call of stepStage() handles one row,
// so that the action can yield between two rows.
#include "actions/join/join.h"

#include "actions/shared/tables/kept_rows.h"
#include "actions/shared/tables/table_columns.h"
#include "base/counted.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr int kFirstPin = 0;
constexpr int kSecondPin = 1;
// Rows of the second table in memory.
constexpr qint64 kTableBytes = qint64(96) << 20;

} // namespace

ActionJoin::ActionJoin(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kJoinEntry, saved, parameters)
{
}

QVector<ParameterProblem> ActionJoin::problems() const
{
    return shared::kindProblems(m_params.kinds);
}

/// A graph may run again in the same process, so nothing of the last run is left.
void ActionJoin::start()
{
    m_run.reset();
    m_first = m_second = nullptr;
    m_stage = Stage::TakeSecond;
    m_firstRows = m_secondRows = 0;
    m_nextAlone = 0;
}

/// Runs stages until the host wants the thread back; m_stage keeps the place.
bool ActionJoin::step()
{
    if (!m_run && !begin()) {
        return false;
    }
    while (!yieldRequested()) {
        if (!stepStage()) {
            return false;
        }
    }
    return true;
}

/// Needs the columns of both inputs, which are known after the first row or the end of each.
bool ActionJoin::begin()
{
    // The columns of a table arrive with its first row, or with its end.
    m_second = getNextRowFromInPin(kSecondPin);
    m_first = getNextRowFromInPin(kFirstPin);
    if (!runIsGood()) {
        return false;
    }
    auto layout = findJoinLayout(this, m_params, getInputColumns(kFirstPin)->schema(),
                                 getInputColumns(kSecondPin)->schema());
    if (!layout) {
        return false;
    }
    OneRow *const out = getOutputRowForOutputPin(0);
    out->setColName(layout->output.names);
    out->setMetaData(layout->output.types);
    out->setSortInfos(layout->output.sortedOn);
    if (!layout->renamed.isEmpty()) {
        MainUI::addLog(
            MainUI::Info,
            u"join: %1 of the second table got the suffix '%2'; the first is '%3'\n"_s.arg(
                counted(layout->renamed.size(), u"column"_s), m_params.suffix,
                layout->renamed.front()));
    }
    m_run = std::make_unique<RunState>(*std::move(layout));
    return true;
}

/// A small piece of work, so that a stop takes effect soon.
bool ActionJoin::stepStage()
{
    switch (m_stage) {
    case Stage::TakeSecond:
        return takeSecond();
    case Stage::TakeFirst:
        return takeFirst();
    case Stage::SendAlone:
        return sendAlone();
    case Stage::JoinParts:
        return joinPart();
    case Stage::SendJoined:
        break;
    }
    return sendJoined();
}

/// At the end the table is complete and can be searched.
bool ActionJoin::takeSecond()
{
    const OneRow *row = std::exchange(m_second, nullptr);
    if (row == nullptr) {
        row = getNextRowFromInPin(kSecondPin);
    }
    if (row != nullptr) {
        ++m_secondRows;
        return keepSecond(*row);
    }
    if (!runIsGood()) {
        return false;
    }
    m_run->table.index();
    m_run->hasPartner.assign(size_t(m_run->table.size()), false);
    m_stage = Stage::TakeFirst;
    return true;
}

/// Adds a row to the table, or to the parts once the table was full.
bool ActionJoin::keepSecond(const OneRow &row)
{
    RunState &run = *m_run;
    const uchar *const *const cells = row.view().cells;
    for (size_t i = 0; i < run.keptCells.size(); ++i) {
        run.keptCells[i] = cells[run.layout.kept[i]];
    }
    char *const key =
        run.table.room(run.secondKey.bytesAtMost(cells) +
                       rows::packedBytesAtMost(run.layout.keptTypes, run.keptCells.data()));
    char *const keyEnd = run.secondKey.put(cells, key);
    if (keyEnd == nullptr) {
        return failKey(u"second"_s, m_secondRows, row, run.secondKey.failedColumn());
    }
    // Only a full join sends a row that has no partner.
    if (run.secondKey.hasMissing() && m_params.type != JoinType::Full) {
        return true;
    }
    const char *const end = rows::packRow(run.layout.keptTypes, run.keptCells.data(), keyEnd);
    if (run.parts) {
        return run.parts->putSecond({key, size_t(keyEnd - key)}, {keyEnd, size_t(end - keyEnd)}) ||
               failParts();
    }
    run.table.commit(keyEnd - key, end - keyEnd);
    return run.table.bytes() < kTableBytes || moveToParts();
}

/// The table is full: its rows and all later ones go to temporary files.
bool ActionJoin::moveToParts()
{
    RunState &run = *m_run;
    run.parts = std::make_unique<PartitionedJoin>(PartitionedJoin::Options{
        m_params.type, kTableBytes, shared::spoolOptions(this), shared::sorterOptions(this)});
    for (int row = 0; row < run.table.size(); ++row) {
        const rows::Record record = run.table.at(row);
        if (!run.parts->putSecond(record.key, record.row)) {
            return failParts();
        }
    }
    run.table = {};
    return true;
}

/// Looks up the partners of one row, or keeps the row with its key until both tables are in parts.
bool ActionJoin::takeFirst()
{
    RunState &run = *m_run;
    const OneRow *row = std::exchange(m_first, nullptr);
    if (row == nullptr) {
        row = getNextRowFromInPin(kFirstPin);
    }
    if (row == nullptr) {
        m_stage = run.parts ? Stage::JoinParts : Stage::SendAlone;
        return runIsGood();
    }
    ++m_firstRows;
    const uchar *const *const cells = row->view().cells;
    run.bytes.resize(size_t(run.firstKey.bytesAtMost(cells)));
    const char *const end = run.firstKey.put(cells, run.bytes.data());
    if (end == nullptr) {
        return failKey(u"first"_s, m_firstRows, *row, run.firstKey.failedColumn());
    }
    // A missing cell is equal to nothing, not even to another missing one.
    const std::string_view key(run.bytes.data(),
                               run.firstKey.hasMissing() ? 0 : size_t(end - run.bytes.data()));
    if (run.parts) {
        return putFirst(*row, key);
    }
    joinFirst(*row, key);
    return true;
}

/// All of its cells are packed: the row of the input is gone when the parts are joined.
bool ActionJoin::putFirst(const OneRow &row, std::string_view key)
{
    const rows::ColumnTypes &types = m_run->layout.firstTypes;
    const uchar *const *const cells = row.view().cells;
    std::vector<char> packed(size_t(rows::packedBytesAtMost(types, cells)));
    const char *const end = rows::packRow(types, cells, packed.data());
    return m_run->parts->putFirst(key, {packed.data(), size_t(end - packed.data())}) || failParts();
}

/// An empty key has a missing cell, which is equal to nothing.
void ActionJoin::joinFirst(const OneRow &row, std::string_view key)
{
    RunState &run = *m_run;
    const uchar *const *const cells = row.view().cells;
    int found = key.empty() ? rows::RowTable::kNone : run.table.find(key);
    if (found == rows::RowTable::kNone && m_params.type != JoinType::Inner) {
        send(cells, nullptr);
    }
    for (; found != rows::RowTable::kNone; found = run.table.findNext(found)) {
        run.hasPartner[size_t(found)] = true;
        send(cells, run.table.at(found).row.data());
    }
}

/// Keys that are kept, those of a full join, are only used when the first table has no row.
void ActionJoin::send(const uchar *const *first, const char *second)
{
    RunState &run = *m_run;
    const JoinLayout &layout = run.layout;
    OneRow *const out = getOutputRowForOutputPin(0);
    for (size_t i = 0; first != nullptr && i < layout.firstTypes.size(); ++i) {
        out->setCol(int(i), first[i]);
    }
    if (second != nullptr) {
        rows::unpackRow(layout.keptTypes, second, bufferForOutputPin(0), run.keptCells.data());
        for (size_t i = first == nullptr ? 0 : size_t(layout.keptKeys); i < layout.kept.size();
             ++i) {
            out->setCol(layout.outputs[i], run.keptCells[i]);
        }
    }
    setRowReadyForOutput(0);
}

/// The rows of the second table without a partner, of a full join.
bool ActionJoin::sendAlone()
{
    const RunState &run = *m_run;
    if (m_params.type != JoinType::Full || m_nextAlone == run.table.size()) {
        return false;
    }
    const int row = m_nextAlone++;
    if (!run.hasPartner[size_t(row)]) {
        send(nullptr, run.table.at(row).row.data());
    }
    return true;
}

/// A part at a time, so that the run can be stopped between two.
bool ActionJoin::joinPart()
{
    const auto hasMore = m_run->parts->joinNextPart();
    if (!hasMore) {
        return failParts();
    }
    m_stage = *hasMore ? m_stage : Stage::SendJoined;
    return true;
}

/// The rows of the parts arrive in the order that they would have without parts.
bool ActionJoin::sendJoined()
{
    RunState &run = *m_run;
    const auto row = run.parts->next();
    if (!row) {
        return failParts();
    }
    if (!*row) {
        return false;
    }
    const char *second = (*row)->packed;
    if ((*row)->hasFirst) {
        second = rows::unpackRow(run.layout.firstTypes, second, bufferForOutputPin(0),
                                 run.firstCells.data());
    }
    send((*row)->hasFirst ? run.firstCells.data() : nullptr, (*row)->hasSecond ? second : nullptr);
    return true;
}

/// A text in a column that is compared as numbers.
bool ActionJoin::failKey(const QString &table, qint64 number, const OneRow &row, int column)
{
    return fail(
        u"Error: join: %1 table, %2\n"_s.arg(table, shared::notANumber(number, row, column)));
}

/// All failures of the parts are those of their temporary files.
bool ActionJoin::failParts()
{
    return shared::failKeptRows(this, BlockSpool(shared::spoolOptions(this)).folder(),
                                m_run->parts->error());
}

} // namespace corvanta
