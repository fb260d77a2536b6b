// Finds the encoding that a page declares in a <meta> (HTML standard, section 13.2.3.2).
#pragma once
#include <QByteArray>
#include <QByteArrayView>

namespace corvanta::markup {

/// The label in the first `<meta charset=...>` or `<meta http-equiv=content-type content=...>` of
/// the page that starts with `first`; empty without one. Not in comments and scripts.
QByteArray pageCharset(QByteArrayView first);

} // namespace corvanta::markup
