// The sheets are <workbook><sheets><sheet name="..."/>...</sheets></workbook> (ECMA-376 part 1,
// 18.2.19 and 18.2.27).
#include "codecs/xlsx/sheet_list.h"

#include "codecs/markup/tokens/xml_tokenizer.h"
#include "codecs/markup/tree/path.h"
#include "codecs/xlsx/read/part_text.h"

namespace corvanta::xlsx {

using markup::Token;
using markup::XMLTokenizer;

namespace {

/// More than a hundred thousand sheets need. Keeps a hostile member from filling the memory.
constexpr qint64 kMaxMemberBytes = qint64(32) << 20;

/// Whether the document ends here, well or badly.
bool isLast(Token token)
{
    return token == Token::Error || token == Token::EndOfData;
}

/// Skip the rest of the element whose Start was read last.
bool skipElement(XMLTokenizer &tokens)
{
    for (int depth = 1; depth > 0;) {
        const Token token = tokens.nextToken();
        if (isLast(token)) {
            return false;
        }
        depth += token == Token::Start ? 1 : (token == Token::End ? -1 : 0);
    }
    return true;
}

/// Go to the first element of this name at the current depth; false when there is none.
bool enter(XMLTokenizer &tokens, std::u16string_view name)
{
    for (;;) {
        const Token token = tokens.nextToken();
        if (isLast(token) || token == Token::End) {
            return false;
        }
        if (token == Token::Start) {
            if (markup::nameMatches(tokens.rawText(), name)) {
                return true;
            }
            if (!skipElement(tokens)) {
                return false;
            }
        }
    }
}

/// The name in the start of a sheet; empty without one.
QString nameOf(const XMLTokenizer &tokens)
{
    for (size_t i = 0; i < tokens.attributes().size(); ++i) {
        if (markup::decoded(tokens.attributeName(i)) == u"name") {
            return QString::fromStdU16String(markup::decoded(tokens.attributeValue(i)));
        }
    }
    return {};
}

/// The names in the element whose Start was read last.
Result<QStringList, SheetListError> namesIn(XMLTokenizer &tokens)
{
    QStringList names;
    for (;;) {
        switch (tokens.nextToken()) {
        case Token::Start:
            names << nameOf(tokens);
            if (!skipElement(tokens)) {
                return Fault{SheetListError::NoSheets};
            }
            break;
        case Token::End:
            return names;
        case Token::Error:
        case Token::EndOfData:
            return Fault{SheetListError::NoSheets};
        default:
            return Fault{SheetListError::NotAnElement};
        }
    }
}

/// The fault of a member that cannot be read to the end of its sheets, with the cause.
Fault<SheetListError> withCause(const Fault<SheetListError> &fault, const XMLTokenizer &tokens,
                                const zip::MemberStream &member)
{
    if (member.fault()) {
        return {fault.code, memberFault(*member.fault(), QStringLiteral("xl/workbook.xml")).detail};
    }
    if (fault.code == SheetListError::NotAnElement) {
        return {fault.code,
                QStringLiteral("the element 'sheets' of xl/workbook.xml holds more than "
                               "elements, in line %1")
                    .arg(tokens.line())};
    }
    if (tokens.token() == Token::Error) {
        return {fault.code,
                QStringLiteral("xl/workbook.xml is not well-formed in line %1").arg(tokens.line())};
    }
    return {fault.code, QStringLiteral("xl/workbook.xml has no complete element 'sheets'")};
}

/// The fault of a package in which the workbook part cannot be opened.
Fault<SheetListError> withoutWorkbook(const Fault<zip::Error> &fault)
{
    return {SheetListError::NoWorkbook,
            fault.code == zip::Error::NoMember
                ? QStringLiteral("the package has no member xl/workbook.xml")
                : memberFault(fault, QStringLiteral("xl/workbook.xml")).detail};
}

} // namespace

Result<QStringList, SheetListError> readSheetList(zip::PackageReader &package)
{
    auto member = package.openStream("xl/workbook.xml");
    if (!member) {
        return withoutWorkbook(member.fault());
    }
    if ((*member)->size() > kMaxMemberBytes) {
        return Fault{SheetListError::NoSheets,
                     QStringLiteral("xl/workbook.xml is larger than 32 MiB")};
    }
    XMLTokenizer tokens(**member, 0);
    tokens.setBalanced(true);
    tokens.setOptions({.discardNameSpaces = true});
    if (!enter(tokens, u"workbook") || !enter(tokens, u"sheets")) {
        return withCause(Fault{SheetListError::NoSheets}, tokens, **member);
    }
    auto names = namesIn(tokens);
    return names ? std::move(names) : withCause(names.fault(), tokens, **member);
}

} // namespace corvanta::xlsx
