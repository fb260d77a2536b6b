// Checks at compile time that the virtual functions of the contract are in their fixed order.
//
// Compiled modules call a virtual function by its place in the table of its class, its slot. In the
// Itanium C++ ABI (GCC, Clang), section 2.3, a pointer to a virtual member function is
//
//   8 bytes  1 + the offset of its slot in the table, in bytes
//   8 bytes  the offset of its class in the object
//
// A constant expression cannot read these bytes, but the optimiser folds the comparison: a call of
// slotHasMoved() remains only if a slot is wrong, and its attribute makes that an error.
//
// A class has two slots for its destructor. When a function is added at the end of a class, add its
// line here, and raise the number in plugin_abi.json.
#include "corvanta/action_item.h"
#include "corvanta/log.h"
#include "corvanta/plugin_interface.h"

#include <cstring>

#if defined(__OPTIMIZE__) && defined(__LP64__)

namespace corvanta::abi {

[[gnu::error("a virtual function of the contract is not in its slot")]] void slotHasMoved();

template <class F> [[gnu::always_inline]] inline void expectSlot(F function, std::size_t slot)
{
    std::size_t words[2];
    static_assert(sizeof(function) == sizeof(words));
    std::memcpy(words, &function, sizeof(words));
    if (words[0] != 1 + slot * sizeof(void *)) {
        slotHasMoved();
    }
}

/// Never called.
void checkActionItem()
{
    expectSlot(&ActionItem::getTypeName, 0);
    expectSlot(&ActionItem::createPanel, 1);
    expectSlot(&ActionItem::getIcon, 2);
    expectSlot(&ActionItem::addPinIn, 3);
    expectSlot(&ActionItem::addPinOut, 4);
    expectSlot(&ActionItem::removePinIn, 5);
    expectSlot(&ActionItem::removePinOut, 6);
    expectSlot(&ActionItem::getDescription, 7);
    expectSlot(&ActionItem::showHelp, 8);
    expectSlot(&ActionItem::getFileTypes, 9);
    expectSlot(&ActionItem::getTags, 10);
    expectSlot(&ActionItem::getKeywords, 11);
    expectSlot(&ActionItem::getAlternativeNames, 12);
    expectSlot(&ActionItem::clone, 13);
    expectSlot(&ActionItem::save, 14);
    expectSlot(&ActionItem::init, 15);
    expectSlot(&ActionItem::close, 16);
    expectSlot(&ActionItem::prepareRun, 17);
    expectSlot(&ActionItem::wakeAll, 18);
    expectSlot(&ActionItem::computeCompletion, 19);
    expectSlot(&ActionItem::completionIn2Pass, 20);
    expectSlot(&ActionItem::canRunInParallel, 21);
    expectSlot(&ActionItem::fullTableRequiredToComputeMetas, 22);
    expectSlot(&ActionItem::getHDFile, 23);
    expectSlot(&ActionItem::getHDTime, 24);
    expectSlot(&ActionItem::clearHDFile, 25);
    expectSlot(&ActionItem::newInstance, 28);
}

/// Never called.
void checkOthers()
{
    expectSlot(&CorvantaPluginInterface::createAction, 2);
    expectSlot(&CorvantaPluginInterface::initialise, 3);
    expectSlot(&CorvantaPluginInterface::getVersion, 4);
    expectSlot(&CorvantaPluginInterface::getExtra1, 5);
    expectSlot(&CorvantaPluginInterface::getExtra2, 6);
    expectSlot(&CorvantaPluginInterface::createActionFromNode, 7);
    expectSlot(&LogSink::add, 2);
    expectSlot(&LogSink::addBytesRead, 3);
    expectSlot(&LogSink::addWrittenFile, 4);
}

} // namespace corvanta::abi

#endif
