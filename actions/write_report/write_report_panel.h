// The property panel of writeReport.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionWriteReport final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
