// The property panel of writeExcel.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionWriteExcel final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
