// iconv(3) reports the end of a call by its result and errno: 0 when all bytes are converted,
// EINVAL for an incomplete character at the end, EILSEQ for an invalid one, E2BIG without room.
#include "codecs/encoding/iconv_handle.h"

#include <iconv.h>

#include <cerrno>

namespace corvanta::encoding {

namespace {

/// The null pointer of a handle that is not open; iconv has another value for a failure.
void *openConverter(const QByteArray &to, const QByteArray &from)
{
    if (to.isEmpty() || from.isEmpty()) {
        return nullptr;
    }
    const iconv_t converter = iconv_open(to.constData(), from.constData());
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the value that iconv_open() returns on failure
    return converter == reinterpret_cast<iconv_t>(-1) ? nullptr : converter;
}

} // namespace

IconvHandle::IconvHandle(const QByteArray &to, const QByteArray &from)
    : m_converter(openConverter(to, from))
{
}

void IconvHandle::Close::operator()(void *converter) const noexcept
{
    iconv_close(converter);
}

int IconvHandle::convert(const char **in, size_t *inLeft, char **out, size_t *room) const
{
    char *source = const_cast<char *>(*in); // iconv does not write there
    errno = 0;
    const size_t result = iconv(m_converter.get(), &source, inLeft, out, room);
    *in = source;
    return result == static_cast<size_t>(-1) ? errno : 0;
}

void IconvHandle::finish(char **out, size_t *room) const
{
    iconv(m_converter.get(), nullptr, nullptr, out, room);
}

void IconvHandle::reset() const
{
    iconv(m_converter.get(), nullptr, nullptr, nullptr, nullptr);
}

} // namespace corvanta::encoding
