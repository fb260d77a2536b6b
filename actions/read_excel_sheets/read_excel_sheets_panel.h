// The property panel of readExcelSheets.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionReadExcelSheets final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
