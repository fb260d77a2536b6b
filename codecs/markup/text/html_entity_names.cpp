// The named character references of HTML, in the order of their bytes. The .inc file holds them in
// this form:
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

namespace corvanta::markup {

const std::string_view kHtmlEntities =
#include "codecs/markup/text/html_entity_names.inc"
    ;

} // namespace corvanta::markup
