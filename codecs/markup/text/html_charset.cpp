// Labels that mean another encoding than their name says; all others are names for iconv. A <meta>
// that can be read byte by byte is not in UTF-16: browsers then use UTF-8.
#include "codecs/markup/text/html_charset.h"

#include "codecs/encoding/iconv_handle.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace corvanta::markup {

namespace {

struct Labels
{
    const char *encoding;
    std::string_view labels; ///< in lower case, each between spaces
};

constexpr std::array<Labels, 11> kLabels{{
    {"UTF-8", " utf-8 utf8 unicode unicode-1-1-utf-8 unicode11utf8 unicode20utf8 x-unicode20utf8 "
              "utf-16 utf-16le utf-16be ucs-2 iso-10646-ucs-2 csunicode unicodefeff unicodefffe "},
    {"CP1252", " windows-1252 x-cp1252 cp1252 iso-8859-1 iso8859-1 iso88591 iso_8859-1 "
               "iso_8859-1:1987 iso-ir-100 latin1 l1 csisolatin1 cp819 ibm819 ascii us-ascii "
               "ansi_x3.4-1968 x-user-defined "},
    {"CP1254", " windows-1254 x-cp1254 cp1254 iso-8859-9 iso8859-9 iso88599 iso_8859-9 "
               "iso_8859-9:1989 iso-ir-148 latin5 l5 csisolatin5 "},
    {"CP874", " windows-874 dos-874 iso-8859-11 iso8859-11 iso885911 tis-620 "},
    {"GB18030", " gb18030 gbk x-gbk gb2312 gb_2312 gb_2312-80 chinese csgb2312 csiso58gb231280 "
                "iso-ir-58 "},
    {"BIG5-HKSCS", " big5 big5-hkscs cn-big5 csbig5 x-x-big5 "},
    {"CP932", " shift_jis shift-jis sjis x-sjis csshiftjis ms932 ms_kanji windows-31j "},
    {"CP949", " euc-kr cseuckr korean ks_c_5601-1987 ks_c_5601-1989 ksc5601 ksc_5601 "
              "csksc56011987 iso-ir-149 windows-949 "},
    {"EUC-JP", " euc-jp x-euc-jp cseucpkdfmtjapanese "},
    {"ISO-8859-8", " iso-8859-8-i logical csiso88598i iso-8859-8-e visual csiso88598e "},
    {"MACINTOSH", " macintosh mac x-mac-roman csmacintosh "},
}};

bool isKnownToIconv(const QByteArray &name)
{
    return encoding::IconvHandle("UTF-8", name).isOpen();
}

} // namespace

QByteArray encodingOfCharset(const QByteArray &charset)
{
    const QByteArray label = charset.trimmed().toLower();
    const QByteArray word = ' ' + label + ' ';
    const auto *const found =
        std::find_if(kLabels.begin(), kLabels.end(), [&](const Labels &labels) {
            return labels.labels.find(word.constData()) != std::string_view::npos;
        });
    const QByteArray name = found != kLabels.end() ? QByteArray(found->encoding) : label;
    return !label.isEmpty() && isKnownToIconv(name) ? name : QByteArray();
}

} // namespace corvanta::markup
