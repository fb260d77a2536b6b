// The sections of XML and HTML whose content is not split into tokens.
//
//     opener       closer       section
//     <![CDATA[    ]]>          XML 1.0, section 2.7
//     <!DOCTYPE    ]> or >      XML 1.0, section 2.8; ">" if there is no "["; see DocTypeEnd
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

/// Bytes of the closer of `section`, not a DOCTYPE, at the end of `content`; 0 without one.
inline size_t closerSize(std::string_view content, const ClearSection &section)
{
    return content.ends_with(section.closer) ? section.closer.size() : 0;
}

/// Finds the end of a DOCTYPE: its first ">", or with a subset "]", blanks and ">" outside
/// declarations, comments and instructions (XML 1.0, section 2.8). A literal may contain "]>".
class DocTypeEnd
{
public:
    /// Bytes of the closer at the end of `content`; 0 without one. `content` is everything after
    /// the opener up to a ">" or "[". Each call continues where the call before ended.
    size_t closerSize(std::string_view content)
    {
        if (m_at == 0 && content.find('[') == std::string_view::npos) {
            return 1;
        }
        while (m_at < content.size()) {
            const std::string_view rest = content.substr(m_at);
            const size_t found = findNext(rest);
            m_at = found == std::string_view::npos ? content.size() : m_at + found + 1;
            if (found == std::string_view::npos) {
                break;
            }
            const size_t closer = pass(rest.substr(found));
            if (closer != 0) {
                return closer;
            }
        }
        return 0;
    }

private:
    /// Where `rest` has the next character that may change what is open.
    size_t findNext(std::string_view rest) const
    {
        if (m_open.empty()) {
            return rest.find_first_of("<]");
        }
        return m_open == kDeclaration ? rest.find_first_of("\"'>") : rest.find(m_open);
    }

    /// Pass what findNext() found, at the start of `at`; returns the bytes of the closer, or 0.
    size_t pass(std::string_view at)
    {
        if (m_open.empty() && at[0] == ']') {
            const size_t next = at.find_first_not_of(" \t\r\n", 1);
            return next != std::string_view::npos && at[next] == '>' ? next + 1 : 0;
        }
        if (m_open.empty()) {
            m_open = at.starts_with("<!--") ? "-->" : at.starts_with("<?") ? "?>" : kDeclaration;
        } else if (m_open == kDeclaration && at[0] != '>') {
            m_open = at[0] == '"' ? "\"" : "'";
        } else {
            m_open = m_open.size() == 1 && m_open != kDeclaration ? kDeclaration : "";
        }
        return 0;
    }

    static constexpr std::string_view kDeclaration = ">";

    std::string_view m_open; // what ends the innermost open part; empty between declarations
    size_t m_at = 0;         // bytes of the content that have been examined
};

} // namespace corvanta::markup
