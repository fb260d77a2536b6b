// The property panel of readXML.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionReadXML final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
