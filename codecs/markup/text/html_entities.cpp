// html_entity_names.inc holds the references in the order of the bytes of their names, each
// followed by a blank:
//
//     name ":" code points in hexadecimal, joined by "+"     "AMP:26", "bne:3D+20E5"
//     "!" name ...                                           also valid without its ";"
//
// Source: https://html.spec.whatwg.org/entities.json, which Python has as html.entities.html5:
//
//     names = sorted({name.rstrip(";") for name in html5})
//     points = "+".join("%X" % ord(c) for c in html5[name + ";"])
//     ("!" if name in html5 else "") + name + ":" + points, for each name
#include "codecs/markup/text/html_entities.h"

#include <QChar>

#include <algorithm>
#include <charconv>
#include <vector>

namespace corvanta::markup {

namespace {

constexpr std::string_view kHtmlEntities =
#include "codecs/markup/text/html_entity_names.inc"
    ;

struct Entry
{
    std::string_view name;
    NamedReference reference;
};

/// Add the code point at `*at`; moves `*at` past it.
void addCodePoint(const char **at, const char *end, NamedReference *reference)
{
    quint32 c = 0;
    *at = std::from_chars(*at, end, c, 16).ptr;
    const auto put = [&](char16_t unit) {
        reference->units.at(static_cast<size_t>(reference->unitCount++)) = unit;
    };
    if (QChar::requiresSurrogates(c)) {
        put(QChar::highSurrogate(c));
        put(QChar::lowSurrogate(c));
    } else {
        put(static_cast<char16_t>(c));
    }
}

Entry parsedEntry(std::string_view text)
{
    Entry entry;
    entry.reference.isFree = text.front() == '!';
    text.remove_prefix(entry.reference.isFree ? 1 : 0);
    const size_t colon = text.find(':');
    entry.name = text.substr(0, colon);
    const char *at = text.data() + colon;
    const char *const end = text.data() + text.size();
    while (at != end) {
        ++at; // the ":" or "+"
        addCodePoint(&at, end, &entry.reference);
    }
    return entry;
}

std::vector<Entry> parsedEntries()
{
    std::vector<Entry> entries;
    for (size_t at = 0; at < kHtmlEntities.size();) {
        const size_t end = kHtmlEntities.find(' ', at);
        entries.push_back(parsedEntry(kHtmlEntities.substr(at, end - at)));
        at = end + 1;
    }
    return entries;
}

} // namespace

std::optional<NamedReference> findReference(std::string_view name)
{
    static const std::vector<Entry> entries = parsedEntries();
    const auto found = std::lower_bound(
        entries.begin(), entries.end(), name,
        [](const Entry &entry, std::string_view wanted) { return entry.name < wanted; });
    if (found == entries.end() || found->name != name) {
        return std::nullopt;
    }
    return found->reference;
}

} // namespace corvanta::markup
