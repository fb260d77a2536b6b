// readers/read_xml.h
// readXML: rows from the nested elements of XML and HTML documents.
#pragma once
#include "plugin/pending_action.h"
#include "readers/read_xml_params.h"

namespace corvanta {

class ActionReadXML final : public PendingAction<ActionReadXML, ReadXmlParams>
{
public:
    ActionReadXML(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadXmlParams> &paramTable() { return readXmlParamTable(); }
    static int pinsInFor(const ReadXmlParams &params) { return params.fromInputPin != 0 ? 1 : 0; }
};

} // namespace corvanta
