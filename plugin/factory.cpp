#include "plugin/catalogue.h"
#include "writers/write_excel.h"

#include <iterator>
#include <new>

namespace corvanta {

namespace {

template <class Action> ActionItem *make()
{
    return new (std::nothrow) Action(XMLNode::emptyNode(), nullptr);
}

/// In catalogue order.
constexpr ActionItem *(*kMakers[])() = {
    make<ActionWriteExcel>,
};

} // namespace

ActionItem *createCatalogueAction(unsigned int index)
{
    try {
        return index < std::size(kMakers) ? kMakers[index]() : nullptr;
    } catch (const std::exception &) {
        return nullptr;
    }
}

} // namespace corvanta
