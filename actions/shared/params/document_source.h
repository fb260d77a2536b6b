// Where a reader of JSON or XML documents gets them from.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta {

/// Any other number means the input pin too.
enum class DocumentSource { File, InputPin };

namespace shared {

template <class P> Param<P> fromInputPin(const char *label, const char *meaning)
{
    return choice<P>("fromInputPin", &P::fromInputPin,
                     {{DocumentSource::File, "from the file"},
                      {DocumentSource::InputPin, "from input pin 0"}})
        .label(label)
        .meaning(meaning);
}

} // namespace shared

} // namespace corvanta
