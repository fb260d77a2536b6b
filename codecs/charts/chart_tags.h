// Finds the tags [[KOBData reference]] of a chart part, and the data of the series that they mark.
//
// A chart part is a member such as xl/charts/chart1.xml (ECMA-376 part 1, 21.2). A tag marks the
// series that it is in; it is usually the name of that series:
//
//     <c:ser> <c:tx>..[[KOBData sales]]..</c:tx> <c:cat>..</c:cat> <c:val>..</c:val> </c:ser>
//             name with the tag                  axes with the data to replace
//
// Threads: pure functions.
#pragma once
#include "base/result.h"
#include "codecs/charts/chart_kinds.h"
#include "codecs/opc/error.h"

#include <QByteArrayView>
#include <QString>

#include <optional>
#include <vector>

namespace corvanta::charts {

/// More tags than this in one part are rejected: programs show at most 255 series per chart.
inline constexpr size_t kMaxTags = 65'536;

/// What the template holds in an axis, and so what it gets: numbers (c:numRef, c:numLit) or texts
/// (c:strRef, c:strLit and others).
enum class AxisKind : quint8 { Number, Text };

/// An axis element of a series. Offsets count the bytes of the part.
struct AxisPlace
{
    int axis = 0; ///< index in axisElements()
    AxisKind kind = AxisKind::Number;
    QByteArrayView name = {}; ///< of the element with its prefix; a view of the part
    qsizetype begin = 0;      ///< of the opening tag
    qsizetype openEnd = 0;    ///< after the opening tag
    qsizetype end = 0;        ///< after the element
    bool isEmptyTag = false;  ///< `<c:val/>`
};

/// What a tag can be used for.
enum class TagUse : quint8 {
    Series,   ///< its series can be filled
    NoChart,  ///< is outside of all chart elements of a known type
    NoValues, ///< its series has no values after the tag
    Repeated, ///< its series has an earlier tag
    Split,    ///< markup divides its reference
};

/// The name of a series as a reference to a cell, with its last result: an element strRef.
struct NameReference
{
    QByteArrayView element = {}; ///< its name with its prefix; a view of the part
    qsizetype begin = 0;         ///< of the opening tag
    qsizetype end = 0;           ///< after the element
};

/// A tag and what it marks. Views refer to the part, which must outlive the tag. A Split tag has
/// only its place and its reference.
struct ChartTag
{
    QString reference;           ///< trimmed, entities decoded; of a divided one without the markup
    QByteArrayView written = {}; ///< the reference as it is in the part, trimmed
    // Offsets in the part, of "[[" and after "]]".
    qsizetype begin = 0;
    qsizetype end = 0;
    std::optional<NameReference> name = {}; ///< around the tag
    TagUse use = TagUse::NoChart;
    ChartType type = ChartType::Bar; ///< valid for all uses but NoChart and Split
    std::vector<AxisPlace> axes;     ///< of Series: in document order, with the values
};

/// The tags of a part, in document order, with views of it; empty for a part without any, which is
/// then not examined further. Needs time in proportion to the part's size. Errors: Malformed
/// (broken markup), TooLarge (more than kMaxTags).
Result<std::vector<ChartTag>, opc::Error> findTags(QByteArrayView part);

} // namespace corvanta::charts
