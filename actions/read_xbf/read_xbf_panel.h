// The property panel of ReadXBF.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionReadXBF final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
