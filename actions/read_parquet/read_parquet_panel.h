// The property panel of readParquet.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionReadParquet final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
