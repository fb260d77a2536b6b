// The property panel of readExcelOld.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionReadExcelOld final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
