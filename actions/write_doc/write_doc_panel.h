// The property panel of writeDoc.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionWriteDoc final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
