// Passes requests for help pages to the program's handler.
#include "corvanta/help.h"

#include <utility>

namespace {

/// Without a lock: set once before panels exist.
HelpOpener &helpOpener()
{
    static HelpOpener opener;
    return opener;
}

} // namespace

void openHelp(const QString &id, const QString &anchor)
{
    if (helpOpener()) {
        helpOpener()(id, anchor);
    }
}

void setHelpOpener(HelpOpener opener)
{
    helpOpener() = std::move(opener);
}
