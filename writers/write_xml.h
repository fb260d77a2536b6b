// writers/write_xml.h
// writeXML: rows into an XML file of a chosen form.
#pragma once
#include "plugin/pending_action.h"
#include "writers/write_xml_params.h"

namespace corvanta {

class ActionWriteXML final : public PendingAction<ActionWriteXML, WriteXmlParams>
{
public:
    ActionWriteXML(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteXmlParams> &paramTable() { return writeXmlParamTable(); }
};

} // namespace corvanta
