// The property panel of writeSAS.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionWriteSAS final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
