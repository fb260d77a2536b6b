// Owns a parser of the library and runs it for one of the formats.
//
// The library calls C functions with a context pointer; noexceptCallback() keeps exceptions out of
// its frames. Texts are delivered in the encoding of the file: TextDecoder converts them.
#pragma once
#include "codecs/stat/dictionary.h"
#include "codecs/stat/error.h"
#include "codecs/stat/library_source.h"

#include <readstat.h>

#include <exception>
#include <memory>
#include <new>

namespace corvanta::stat {

/// Threads: one at a time per object; separate objects are independent.
class LibraryParser
{
public:
    /// A parser of `source`, which must outlive it. Throws std::bad_alloc if there is no memory.
    explicit LibraryParser(LibrarySource &source);

    /// For the setters of handlers.
    readstat_parser_t *handle() const { return m_parser.get(); }
    /// Parse a data set of that format; `context` is passed to the handlers.
    readstat_error_t parse(Format format, void *context);
    /// Parse a SAS catalogue (.sas7bcat).
    readstat_error_t parseCatalogue(void *context);

private:
    struct Free
    {
        void operator()(readstat_parser_t *parser) const { readstat_parser_free(parser); }
    };
    std::unique_ptr<readstat_parser_t, Free> m_parser;
};

/// The body of a handler: calls `work`, which returns true to continue. `context` has a member
/// `failure`, an optional fault, for an exception.
template <class Context, class Work>
inline int noexceptCallback(Context &context, Work &&work) noexcept
{
    try {
        return work() ? READSTAT_HANDLER_OK : READSTAT_HANDLER_ABORT;
    } catch (const std::exception &) {
        context.failure = {Error::NoMemory};
        return READSTAT_HANDLER_ABORT;
    }
}

/// The iconv name of the encoding of a file's texts. `wanted` is the user's: any name but "UTF-8"
/// overrides what the file declares. Call from the metadata handler.
QString encodingOf(Format format, const QString &wanted, readstat_metadata_t *metadata);

/// The message of a library error.
QString messageOf(readstat_error_t error);

} // namespace corvanta::stat
