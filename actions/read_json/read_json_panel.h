// The property panel of readJSON.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionReadJSON final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
