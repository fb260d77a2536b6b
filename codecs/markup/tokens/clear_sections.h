// The sections of XML and HTML whose content is not split into tokens.
//
//     opener       closer       section
//     <![CDATA[    ]]>          XML 1.0, section 2.7
//     <!DOCTYPE    ]> or >      XML 1.0, section 2.8; ">" if there is no "["
//     <!--         -->          XML 1.0, section 2.5
//     <PRE>        </PRE>       HTML
//     <script      </script>    HTML; also with a capital S
//     <!           >            all others
#pragma once
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
// Kept for saved graphs: "<script" also matches names like "<scripts", because saved graphs count
// sections in this way (XmlTokenizer.ReadsEveryNotation).
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

/// Index of the section that begins at `at` (a "<"), or kNoSection. Reads up to kLongestOpener
/// bytes in the data of a tokenizer's buffer.
inline size_t openedSection(const char *at)
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
    return i;
}

} // namespace corvanta::markup
