// The property panel of readStat.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionReadStat final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
