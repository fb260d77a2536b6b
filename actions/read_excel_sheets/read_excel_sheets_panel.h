// The property panel of readExcelSheets.
#pragma once
#include "panels/parameter_form.h"

/// Every field comes from the parameter table. Hosts depend on the name of the class.
class Interface_ActionReadExcelSheets final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
