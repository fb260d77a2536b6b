// The system's 8-bit encoding, which the user can override, and the memory for caches.
#include "corvanta/system.h"

#include "base/platform/files.h"
#include "codecs/encoding/text_decoder.h"

#include <limits>
#include <mutex>

using namespace Qt::StringLiterals;

namespace {

/// The override. Readers look it up on their own threads, hence the mutex.
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
    // UTF-8 is not an 8-bit encoding; files in "the system's encoding" are then most often
    // Windows'.
    const QString fromLocale = corvanta::platform::localeEncoding();
    return fromLocale.isEmpty() ? u"windows-1252"_s : fromLocale;
}

void setSystemEncoding(const QString &name)
{
    SystemEncoding &encoding = systemEncoding();
    const std::lock_guard lock(encoding.mutex);
    encoding.name = name;
}

bool isKnownEncoding(const QString &name)
{
    return corvanta::encoding::TextDecoder::open(name).has_value();
}

int memConsumptionInByte(int percent)
{
    // A fixed budget and not the memory of the machine, so that runs behave alike everywhere.
    constexpr qint64 budget = qint64(1) << 30;
    return static_cast<int>(
        qMin<qint64>(budget / 100 * qMax(percent, 0), std::numeric_limits<int>::max()));
}
