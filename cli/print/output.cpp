#include "cli/print/output.h"

#include "base/system_error.h"

#include <QJsonDocument>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

SystemError firstFailure;

/// Must directly follow the write.
void checkWrite(bool succeeded)
{
    if (!succeeded && !firstFailure) {
        firstFailure = SystemError::ofLastCall();
    }
}

} // namespace

void printBytes(QByteArrayView bytes)
{
    const auto size = static_cast<size_t>(bytes.size());
    checkWrite(std::fwrite(bytes.data(), 1, size, stdout) == size);
}

void printText(const QString &text)
{
    printBytes(text.toUtf8());
}

void printJson(const QJsonDocument &document)
{
    printBytes(document.toJson());
}

CommandResult<void> flushOutput()
{
    checkWrite(std::fflush(stdout) == 0);
    if (!firstFailure) {
        return {};
    }
    return Fault{kFailed, u"cannot write to standard output: "_s + firstFailure.text()};
}
