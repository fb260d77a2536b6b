// A list of what a function returns for each element of another list.
#pragma once

#include <algorithm>
#include <iterator>

namespace corvanta {

/// `make(element)` for each element of `range`, in its order. `List` is a container with
/// push_back().
template <class List, class Range, class Make> List mapped(const Range &range, Make make)
{
    List list;
    std::transform(std::begin(range), std::end(range), std::back_inserter(list), make);
    return list;
}

} // namespace corvanta
