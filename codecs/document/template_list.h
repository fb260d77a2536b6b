// Lists the markers of a template, whatever the columns of a graph are.
//
// Authors of templates use it to find markers that will not be replaced: divided by a change of the
// format, or in a part that is not searched.
#pragma once
#include "codecs/opc/package_copy.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace corvanta::document {

/// A marker and where it is. Equal ones of a part are one entry.
struct TemplateMarker
{
    QString text;     ///< with its percent signs
    QString location; ///< "body", "header 1", "slide 3", "notes 3", "picture in the body"
    QByteArray part;  ///< the member that holds it
    int count = 1;
    int runs = 1;           ///< that divide it
    bool isInBody = true;   ///< a part that is searched without allParts
    bool isEscaped = false; ///< the part holds it in another form, with references for characters
    bool isPicture = false; ///< in the target of a picture, not in a text
    bool isLink = false;    ///< in the address of a link, which no action changes
    bool isNumeric = false; ///< both percent signs follow a digit, at each place
};

/// The markers of a Word document or presentation in the order of its members; none for another
/// package. Slides are numbered in their order in the presentation. Parts that are not well-formed
/// end at the fault. Faults: those of a member; Encoding.
Result<std::vector<TemplateMarker>, opc::Error> listTemplate(zip::PackageReader &source);

} // namespace corvanta::document
