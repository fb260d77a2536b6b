// The property panel of readExcel.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionReadExcel final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
