// The namespaces of workbooks in their two families (ECMA-376 part 1 for strict, part 4 for
// transitional workbooks). New workbooks are transitional, which all programs read; an update keeps
// the family of the workbook, because one package must not mix them.
#pragma once
#include <QByteArrayView>

namespace corvanta::xlsx {

/// URIs without a "/" at the end.
struct Family
{
    QByteArrayView main;          ///< of workbooks, sheets and styles
    QByteArrayView relationships; ///< of r:id attributes; relationship types begin with it
};

inline constexpr Family kTransitional{
    "http://schemas.openxmlformats.org/spreadsheetml/2006/main",
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships"};
inline constexpr Family kStrict{"http://purl.oclc.org/ooxml/spreadsheetml/main",
                                "http://purl.oclc.org/ooxml/officeDocument/relationships"};

} // namespace corvanta::xlsx
