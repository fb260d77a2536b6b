// writeDocTable: writes formatted tables to the markers of a Word template, one per input pin.
//
// The action can be placed, edited, saved and linked; writing is not part of this version, and a
// run ends with an error (PendingAction). The pins follow the tables: there is one pin per table,
// and a user adds and removes both together.
#pragma once
#include "actions/shared/pending_action.h"
#include "actions/write_doc_table/write_doc_table_params.h"

namespace corvanta {

extern const ActionEntry kWriteDocTableEntry;

class ActionWriteDocTable final : public PendingAction<ActionWriteDocTable, WriteDocTableParams>
{
public:
    ActionWriteDocTable(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteDocTableParams> &paramTable() { return writeDocTableParamTable(); }
    static int pinsInFor(const WriteDocTableParams &params)
    {
        return static_cast<int>(params.tables.size());
    }

    /// Add a pin and its table, if the action may have another one.
    void addPinIn() override;
    /// Remove the last pin and its table. The first pin stays.
    void removePinIn() override;
};

} // namespace corvanta
