// An action whose parameters are declared and whose file work is not part of this version.
#pragma once
#include "corvanta/action_base.h"

namespace corvanta {

/// Can be placed, edited, saved and linked, so that graphs which contain it open without a loss. A
/// run ends with one error, before any row moves through the action.
///
/// `Self` and `P`: see ParamAction. Threads: the one that runs the action.
template <class Self, class P> class PendingAction : public ParamAction<Self, P>
{
public:
    bool canRun() const override { return false; }

protected:
    using ParamAction<Self, P>::ParamAction;

private:
    bool step() override
    {
        return this->fail(
            QStringLiteral("Error: the action '%1' cannot be run by this version of the module\n")
                .arg(QLatin1StringView(this->getTypeName())));
    }
};

} // namespace corvanta
