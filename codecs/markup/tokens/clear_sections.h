// The sections of XML and HTML whose content is not split into tokens.
//
//     opener       closer       section
//     <![CDATA[    ]]>          XML 1.0, section 2.7
//     <!DOCTYPE    ]> or >      XML 1.0, section 2.8; ">" if there is no "["; blanks in "]>"
//     <!--         -->          XML 1.0, section 2.5
//     <PRE>        </PRE>       HTML
//     <script      </script>    HTML; also with a capital S
//     <!           >            all others
#pragma once
#include "codecs/markup/text/char_class.h"
#include "codecs/markup/tokens/tokenizer.h"

#include <array>
#include <cstring>
#include <string_view>

namespace corvanta::markup {

/// How a section begins and ends.
struct ClearSection
{
    std::string_view opener;
    std::string_view closer;
    ClearKind kind;
};

/// Compared with letter case, in this order.
// Kept for saved graphs: in HTML mode "<script" also matches names like "<scripts", because saved
// graphs count sections in this way (XmlTokenizer.ReadsEveryNotation). In XML, "<scripts" and
// "<scriptName>" are elements.
inline constexpr std::array<ClearSection, 7> kClearSections{{
    {"<![CDATA[", "]]>", ClearKind::CData},
    {"<!DOCTYPE", "]>", ClearKind::DocType},
    {"<!--", "-->", ClearKind::Comment},
    {"<PRE>", "</PRE>", ClearKind::Pre},
    {"<script", "</script>", ClearKind::Script},
    {"<Script", "</Script>", ClearKind::CapitalScript},
    {"<!", ">", ClearKind::Other},
}};

/// The index that means "no section".
inline constexpr size_t kNoSection = kClearSections.size();

/// Bytes at a "<" that decide what it opens.
inline constexpr qsizetype kLongestOpener = 9;

/// True when the name of a section of `kind`, which ends before `at`, ends there as `html` asks.
inline bool endsSectionName(ClearKind kind, const char *at, bool html)
{
    const bool isScript = kind == ClearKind::Script || kind == ClearKind::CapitalScript;
    return html || !isScript || *at == '>' || isSpace(*at);
}

/// Index of the section that begins at `at` (a "<"), or kNoSection. Reads up to kLongestOpener
/// bytes in the data of a tokenizer's buffer. `html`: the document is HTML.
inline size_t openedSection(const char *at, bool html)
{
    const char second = at[1];
    if (second != '!' && second != 'P' && second != 's' && second != 'S') {
        return kNoSection;
    }
    size_t i = 0;
    while (i < kNoSection &&
           std::memcmp(at, kClearSections[i].opener.data(), kClearSections[i].opener.size()) != 0) {
        ++i;
    }
    const bool isSection =
        i == kNoSection ||
        endsSectionName(kClearSections[i].kind, at + kClearSections[i].opener.size(), html);
    return isSection ? i : kNoSection;
}

/// Bytes of the "]", blanks and ">" that end the subset of a DOCTYPE at the end of `content`; 0
/// without them. What comes before distinguishes it from a "]" inside a declaration: a ">" that
/// ends one, a ";" of a reference, or the "[".
inline size_t spacedCloserSize(std::string_view content)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    const size_t bracket = content.find_last_not_of(kBlanks, content.size() - 2);
    if (bracket == std::string_view::npos || bracket == 0 || content[bracket] != ']') {
        return 0;
    }
    const size_t before = content.find_last_not_of(kBlanks, bracket - 1);
    const bool isOutside = before != std::string_view::npos &&
                           std::string_view(">;[").find(content[before]) != std::string_view::npos;
    return isOutside ? content.size() - bracket : 0;
}

/// Bytes of the closer of `section` at the end of `content`, which ends with ">"; 0 without one.
inline size_t closerSize(std::string_view content, const ClearSection &section)
{
    if (content.ends_with(section.closer)) {
        return section.closer.size();
    }
    return section.kind == ClearKind::DocType && content.size() > 1 ? spacedCloserSize(content) : 0;
}

} // namespace corvanta::markup
