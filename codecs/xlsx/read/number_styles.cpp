// The elements that are read:
//
//   <numFmts><numFmt numFmtId="164" formatCode="yyyy\-mm\-dd"/></numFmts>
//   <cellXfs><xf numFmtId="164"/> ... </cellXfs>
#include "codecs/xlsx/read/number_styles.h"

#include "codecs/opc/markup_scan.h"
#include "codecs/sheet/number_format.h"

#include <unordered_map>

namespace corvanta::xlsx {

namespace {

/// Programs limit the formats of a workbook to 65,490.
constexpr size_t kMaxForms = size_t(1) << 20;

int idOf(const opc::Tag &tag)
{
    return tag.attribute("numFmtId").value_or(QByteArrayView()).toInt();
}

/// What the code of an own number format shows.
sheet::NumberForm formOf(const opc::Tag &tag)
{
    const QString code = opc::attributeText(tag, "formatCode");
    return sheet::formOfCode(
        {reinterpret_cast<const char16_t *>(code.utf16()), static_cast<size_t>(code.size())});
}

} // namespace

std::vector<sheet::NumberForm> readNumberForms(QByteArrayView text)
{
    std::vector<sheet::NumberForm> forms;
    std::unordered_map<int, sheet::NumberForm> custom;
    bool isInCellFormats = false;
    opc::TagCursor cursor(text);
    while (cursor.next() && forms.size() < kMaxForms) {
        const opc::Tag &tag = cursor.tag();
        const bool isClosing = tag.kind == opc::Tag::Kind::Close;
        if (tag.local() == "cellXfs") {
            isInCellFormats = tag.kind == opc::Tag::Kind::Open;
        } else if (isClosing) {
            continue;
        } else if (tag.local() == "numFmt") {
            custom[idOf(tag)] = formOf(tag);
        } else if (isInCellFormats && tag.local() == "xf") {
            // An own format may have the id of a built-in one: then it counts.
            const int id = idOf(tag);
            const auto own = custom.find(id);
            forms.push_back(own != custom.end() ? own->second : sheet::formOfBuiltIn(id));
        }
    }
    return forms;
}

} // namespace corvanta::xlsx
