// union: appends the tables of all input pins, in the order of the pins.
//
// Columns that belong together may have different types: whole and decimal numbers become decimal
// numbers, numbers and texts become texts. No value changes.
#pragma once
#include "actions/union/union_params.h"
#include "corvanta/action_base.h"
#include "corvanta/one_row.h"

#include <vector>

namespace corvanta {

extern const ActionEntry kUnionEntry;

class ActionUnion final : public ParamAction<ActionUnion, UnionParams>
{
public:
    ActionUnion(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<UnionParams> &paramTable() { return unionParamTable(); }

private:
    /// One table of the input.
    struct Table
    {
        const OneRow *first = nullptr; // its first row, until it is sent
        bool isUnchanged = false;      // its columns are those of the output
        std::vector<int> outputs;      // by column: its column of the output
    };

    void start() override;
    bool step() override;
    void finish() override { m_tables.clear(); }
    // These return false after a failure.
    bool begin();
    void moveLast(const QString &name, TableSchema *all);
    bool addColumns(int pin, const TableSchema &columns, TableSchema *all);
    bool checkColumns(int pin, const TableSchema &columns, const TableSchema &first);
    void sendRow(const Table &table, const OneRow &row);

    std::vector<Table> m_tables; // by pin
    bool m_hasBegun = false;
    int m_pin = 0; // whose rows are sent
};

} // namespace corvanta
