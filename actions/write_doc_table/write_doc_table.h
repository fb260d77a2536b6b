// writeDocTable: formatted tables at the markers of a Word template, one per input pin.
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

    void addPinIn() override;
    void removePinIn() override;
};

} // namespace corvanta
