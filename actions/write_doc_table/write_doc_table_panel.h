// The property panel of writeDocTable.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionWriteDocTable final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
