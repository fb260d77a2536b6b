// The grammar of a path:
//
//     path  = [ separator ] [ step *( separator step ) ]
//     step  = [ "@" ] name [ "[" [ digits ] "]" ]  /  "[" digits "]"
//     name  = *( character / "\" "\" / "\" "/" )
//
// Only a last "[...]" of a step is an index. "[]" and no index select the first element.
#include "codecs/markup/tree/path.h"

#include "base/mapped.h"

#include <QString>

#include <algorithm>

namespace corvanta::markup {

namespace {

/// Remove the backslashes of a step.
std::u16string unescaped(QStringView text)
{
    std::u16string name;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool escapes = text[i] == u'\\' && i + 1 < text.size() &&
                             (text[i + 1] == u'\\' || text[i + 1] == u'/');
        i += escapes ? 1 : 0;
        name.push_back(text[i].unicode());
    }
    return name;
}

/// Parse the text of a step, which still has its backslashes.
PathStep parseStep(QStringView text, bool zeroBased)
{
    PathStep step;
    const qsizetype open = text.lastIndexOf(u'[');
    bool indexed = open >= 0 && text.endsWith(u']');
    quint64 number = zeroBased ? 0 : 1;
    if (indexed && open + 2 < text.size()) {
        const QStringView digits = text.sliced(open + 1, text.size() - open - 2);
        indexed = std::all_of(digits.begin(), digits.end(),
                              [](QChar c) { return c >= u'0' && c <= u'9'; });
        number = digits.size() > 9 ? MarkupTree::kNone : digits.toUInt();
    }
    if (indexed) {
        step.index = static_cast<quint32>(zeroBased || number == 0 ? number : number - 1);
        text = text.first(open);
        step.anyName = text.isEmpty();
        step.isIndexed = true;
    }
    step.name = nameInStep(text);
    if (step.isAttribute()) {
        step.written = unescaped(text);
    }
    return step;
}

/// Compare bytes while they are ASCII; clears `*isAscii` at the first byte that is not.
bool asciiMatches(std::string_view name, std::u16string_view lowerCase, bool *isAscii)
{
    *isAscii = true;
    for (size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        if (static_cast<uchar>(c) >= 0x80) {
            *isAscii = false;
            return false;
        }
        const char lower = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        if (i >= lowerCase.size() || lowerCase[i] != static_cast<char16_t>(lower)) {
            return false;
        }
    }
    return name.size() == lowerCase.size();
}

MarkupNode findStep(const MarkupNode &node, const PathStep &step)
{
    const MarkupTree &tree = *node.tree();
    quint32 left = step.index;
    quint32 child = tree.first(node.index(), ItemKind::Child);
    for (; child != MarkupTree::kNone; child = tree.sibling(child)) {
        if ((step.anyName || nameMatches(tree.raw(child), step.name)) && left-- == 0) {
            return {&tree, child};
        }
    }
    return {};
}

} // namespace

// Characters are compared one UTF-16 unit at a time, as in saved paths: the case of characters
// beyond U+FFFF matters.
bool nameMatches(const RawText &name, std::u16string_view lowerCase)
{
    bool isAscii = false;
    if (name.form == TextForm::Plain || name.form == TextForm::Detached) {
        const bool same = asciiMatches(name.view(), lowerCase, &isAscii);
        if (isAscii) {
            return same;
        }
    }
    const std::u16string units = decoded(name);
    return std::equal(units.begin(), units.end(), lowerCase.begin(), lowerCase.end(),
                      [](char16_t found, char16_t lower) {
                          return static_cast<char16_t>(QChar::toLower(char32_t(found))) == lower;
                      });
}

/// Unit by unit, as names in documents are compared; QString would also change lengths.
std::u16string toLowerCase(QStringView name)
{
    return mapped<std::u16string>(
        name, [](QChar c) { return static_cast<char16_t>(QChar::toLower(char32_t(c.unicode()))); });
}

std::u16string nameInStep(QStringView text)
{
    return toLowerCase(unescaped(text));
}

std::vector<PathStep> parsePath(QStringView path, const PathSyntax &syntax)
{
    std::vector<PathStep> steps;
    qsizetype start = path.startsWith(syntax.separator) ? 1 : 0;
    if (path.size() == start) {
        return steps;
    }
    for (qsizetype i = start; i <= path.size(); ++i) {
        if (i == path.size() || (path[i] == syntax.separator && (i == 0 || path[i - 1] != u'\\'))) {
            steps.push_back(parseStep(path.sliced(start, i - start), syntax.zeroBased));
            start = i + 1;
        }
    }
    return steps;
}

std::u16string escapedName(std::u16string_view name)
{
    std::u16string step;
    for (const char16_t c : name) {
        if (c == u'\\' || c == u'/') {
            step.push_back(u'\\');
        }
        step.push_back(c);
    }
    return step;
}

std::u16string escapedStep(std::u16string_view name)
{
    // A name that ends like an index needs an index after it.
    return escapedName(name) + (name.ends_with(u']') ? u"[]" : u"");
}

MarkupNode getChildNodeByPath(const MarkupNode &node, QStringView path, bool zeroBased,
                              char16_t separator)
{
    if (path.isNull() || node.isEmpty()) {
        return {};
    }
    MarkupNode at = node;
    for (const PathStep &step : parsePath(path, {zeroBased, separator})) {
        at = findStep(at, step);
        if (at.isEmpty()) {
            break;
        }
    }
    return at;
}

} // namespace corvanta::markup
