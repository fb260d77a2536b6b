// The property panel of writeJSON.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionWriteJSON final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
