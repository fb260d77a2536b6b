#include "codecs/markup/text/entities.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace corvanta::markup {

namespace {

struct Named
{
    std::string_view name; ///< lower case, with the ";"
    char16_t unit;
};

/// "nbsp;" gives a plain space: cells stay free of non-breaking spaces.
/// Kept as required: see the entity cases of the XML tokenizer's tests.
constexpr std::array<Named, 6> kNamed{{
    {"amp;", u'&'},
    {"lt;", u'<'},
    {"gt;", u'>'},
    {"quot;", u'"'},
    {"apos;", u'\''},
    {"nbsp;", u' '},
}};

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

int digitValue(char c, int base)
{
    const char l = lower(c);
    if (l >= '0' && l <= '9') {
        return l - '0';
    }
    return base == 16 && l >= 'a' && l <= 'f' ? l - 'a' + 10 : -1;
}

void setCodePoint(quint32 c, Entity *entity)
{
    // Kept as required: the numbers of lone surrogates go through the pair formula as well.
    if (c >= 0x10000 || (c >= 0xD800 && c <= 0xDFFF)) {
        entity->units = {static_cast<char16_t>(((c - 0x10000U) >> 10) + 0xD800),
                         static_cast<char16_t>((c & 0x3FF) + 0xDC00)};
        entity->unitCount = 2;
        return;
    }
    entity->units[0] = static_cast<char16_t>(c);
    entity->unitCount = 1;
}

/// `at` is behind "&#".
Entity readNumber(const char *start, const char *at, const char *end)
{
    constexpr quint32 kLastCodePoint = 0x10FFFF;
    Entity entity;
    entity.kind = Entity::Kind::BadNumber;
    int base = 10;
    if (at < end && lower(*at) == 'x') {
        base = 16;
        ++at;
    }
    quint32 value = 0;
    for (; at < end && at - start < kEntityBytes; ++at) {
        if (*at == ';') {
            entity.kind = Entity::Kind::Character;
            entity.length = static_cast<int>(at + 1 - start);
            setCodePoint(value, &entity);
            return entity;
        }
        const int digit = digitValue(*at, base);
        value = value * static_cast<quint32>(base) + static_cast<quint32>(std::max(digit, 0));
        if (digit < 0 || value > kLastCodePoint) {
            break;
        }
    }
    return entity;
}

} // namespace

Entity readEntity(const char *at, const char *end)
{
    const char *const name = at + 1;
    if (name < end && *name == '#') {
        return readNumber(at, name + 1, end);
    }
    Entity entity;
    for (const Named &named : kNamed) {
        const auto length = static_cast<qsizetype>(named.name.size());
        if (end - name >= length &&
            std::equal(named.name.begin(), named.name.end(), name,
                       [](char wanted, char found) { return wanted == lower(found); })) {
            entity.kind = Entity::Kind::Character;
            entity.length = static_cast<int>(length) + 1;
            entity.units[0] = named.unit;
            entity.unitCount = 1;
            return entity;
        }
    }
    return entity;
}

} // namespace corvanta::markup
