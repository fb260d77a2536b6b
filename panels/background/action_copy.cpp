#include "panels/background/action_copy.h"

#include <new>

namespace corvanta {

ActionCopy copyOf(ActionItem &original)
{
    ActionCopy copy;
    const GlobalParameters *const global = original.globalParameters();
    copy.global = global == nullptr ? nullptr : std::make_unique<GlobalParameters>(*global);
    copy.item.reset(original.clone(copy.global.get()));
    if (copy.item == nullptr) {
        throw std::bad_alloc();
    }
    copy.item->setIdx(original.getIdx());
    copy.parameters = dynamic_cast<ActionParameters *>(copy.item.get());
    return copy;
}

} // namespace corvanta
