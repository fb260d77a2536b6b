#include "codecs/stat/header_check.h"

namespace corvanta::stat {

Result<void, Error> checkHeader(ByteSource &source, Format)
{
    if (source.size() == 0) {
        return Fault{Error::CannotOpen, QStringLiteral("the file is empty")};
    }
    return {};
}

} // namespace corvanta::stat
