// writeDoc: texts and images at the markers of Word and PowerPoint templates, one document per row.
#pragma once
#include "actions/shared/pending_action.h"
#include "actions/write_doc/write_doc_params.h"

namespace corvanta {

extern const ActionEntry kWriteDocEntry;

class ActionWriteDoc final : public PendingAction<ActionWriteDoc, WriteDocParams>
{
public:
    ActionWriteDoc(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteDocParams> &paramTable() { return writeDocParamTable(); }
};

} // namespace corvanta
