// The property panel of writeParquet.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionWriteParquet final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
