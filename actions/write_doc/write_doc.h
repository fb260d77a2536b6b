// writeDoc: writes texts and images to the markers of Word and PowerPoint templates, one document
// per row.
//
// The action can be placed, edited, saved and linked; writing is not part of this version, and a
// run ends with an error (PendingAction).
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
