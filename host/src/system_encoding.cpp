#include "corvanta/system_encoding.h"

#include "base/platform/files.h"

#include <mutex>

using namespace Qt::StringLiterals;

namespace {

struct SystemEncoding
{
    std::mutex mutex;
    QString name; // guarded by mutex
};

SystemEncoding &systemEncoding()
{
    static SystemEncoding encoding;
    return encoding;
}

} // namespace

QString currentACPName()
{
    SystemEncoding &encoding = systemEncoding();
    const std::lock_guard lock(encoding.mutex);
    if (!encoding.name.isEmpty()) {
        return encoding.name;
    }
    const QString fromLocale = corvanta::platform::localeEncoding();
    return fromLocale.isEmpty() ? u"windows-1252"_s : fromLocale;
}

void setSystemEncoding(const QString &name)
{
    SystemEncoding &encoding = systemEncoding();
    const std::lock_guard lock(encoding.mutex);
    encoding.name = name;
}
