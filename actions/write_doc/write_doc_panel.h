// The property panel of writeDoc.
//
// The form shows every line of the parameter table, with its label and meaning, and needs no code
// here. The class exists because hosts find a panel by the name of its class.
#pragma once
#include "panels/parameter_form.h"

class Interface_ActionWriteDoc final : public corvanta::ParameterForm
{
    Q_OBJECT
public:
    using ParameterForm::ParameterForm;
};
