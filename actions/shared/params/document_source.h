// Where a reader of JSON or XML documents gets them from.
//
// The value also determines the number of input pins; see ParamAction::pinsInFor.
#pragma once
#include "corvanta/params/param_table.h"

namespace corvanta {

/// Saved as its number. Compare with File: any other number means the input pin too.
enum class DocumentSource { File, InputPin };

namespace shared {

/// The line of a parameter table for P::fromInputPin. The texts name the format.
template <class P> Param<P> fromInputPin(const char *label, const char *meaning)
{
    return choice<P>("fromInputPin", &P::fromInputPin,
                     {{DocumentSource::File, "from the file"},
                      {DocumentSource::InputPin, "from input pin 0"}})
        .orAnyNumber("reads input pin 0")
        .label(label)
        .meaning(meaning);
}

} // namespace shared

} // namespace corvanta
