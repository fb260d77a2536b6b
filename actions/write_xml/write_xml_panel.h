// The property panel of writeXML.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionWriteXML final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
