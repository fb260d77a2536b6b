// The parser of the library, with our source instead of a path, and encodings of files:
//
//   .por                          converted by the library: UTF-8
//   .dta before version 118       not named: Windows-1252, unless the user names another
//   others                        named in the file; without a name UTF-8
#include "codecs/stat/library_parser.h"

#include <clocale>

namespace corvanta::stat {

namespace {

/// While it exists, the locale of this thread has UTF-8: the library prints the characters of
/// portable files in the locale's encoding, and writes blanks where that lacks them.
class Utf8Locale
{
public:
    Utf8Locale()
        : m_locale(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr))
        , m_previous(uselocale(m_locale))
    {
    }
    Q_DISABLE_COPY_MOVE(Utf8Locale)
    ~Utf8Locale()
    {
        uselocale(m_previous);
        if (m_locale != nullptr) {
            freelocale(m_locale);
        }
    }

private:
    const locale_t m_locale; // null on a system without it: then nothing changes
    const locale_t m_previous;
};

} // namespace

LibraryParser::LibraryParser(LibrarySource &source)
    : m_parser(readstat_parser_init())
{
    if (!m_parser) {
        throw std::bad_alloc();
    }
    source.attachTo(m_parser.get());
    readstat_set_handler_character_encoding(m_parser.get(), nullptr);
}

readstat_error_t LibraryParser::parse(Format format, void *context)
{
    // The path is not used: the source is open.
    switch (format) {
    case Format::Sas:
        return readstat_parse_sas7bdat(handle(), "", context);
    case Format::SpssSav:
        return readstat_parse_sav(handle(), "", context);
    case Format::SpssPor: {
        const Utf8Locale locale;
        return readstat_parse_por(handle(), "", context);
    }
    case Format::Stata:
        return readstat_parse_dta(handle(), "", context);
    case Format::SasTransport:
        break;
    }
    return readstat_parse_xport(handle(), "", context);
}

readstat_error_t LibraryParser::parseCatalogue(void *context)
{
    return readstat_parse_sas7bcat(handle(), "", context);
}

// Old Stata files do not name their encoding: that of Windows was usual.
QString encodingOf(Format format, const QString &wanted, readstat_metadata_t *metadata)
{
    QString utf8 = QStringLiteral("UTF-8");
    // The library itself converts the characters of portable files.
    if (format == Format::SpssPor) {
        return utf8;
    }
    if (wanted != utf8) {
        return wanted;
    }
    constexpr int kFirstUnicodeStata = 118;
    if (format == Format::Stata) {
        return readstat_get_file_format_version(metadata) < kFirstUnicodeStata
                   ? QStringLiteral("WINDOWS-1252")
                   : utf8;
    }
    const QString declared = QString::fromLatin1(readstat_get_file_encoding(metadata));
    return declared.isEmpty() ? utf8 : declared;
}

QString messageOf(readstat_error_t error)
{
    return QString::fromUtf8(readstat_error_message(error));
}

} // namespace corvanta::stat
