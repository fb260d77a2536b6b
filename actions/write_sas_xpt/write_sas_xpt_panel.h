// The property panel of writeSASXPT.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionWriteSASXPT final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
