// The POSIX implementation, with dladdr(3).
#include "base/platform/library.h"

#include <QFileInfo>

#include <dlfcn.h>

namespace corvanta::platform {

QString folderOfCode(const void *address)
{
    Dl_info info = {};
    if (::dladdr(address, &info) == 0 || info.dli_fname == nullptr) {
        return {};
    }
    // The system loader may use a link to the folder, such as /lib for /usr/lib.
    const QFileInfo file(QString::fromLocal8Bit(info.dli_fname));
    return QFileInfo(file.absolutePath()).canonicalFilePath();
}

} // namespace corvanta::platform
