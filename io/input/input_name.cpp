#include "io/input/input_name.h"

namespace corvanta::input {

InputName parseInputName(const QString &name)
{
    const QString zipMarker = QStringLiteral(".zip@");
    const QString xlsxMarker = QStringLiteral(".xlsx@");
    if (name.endsWith(QLatin1String(".rar"))) {
        return {Kind::Rar, name, {}};
    }
    if (name.endsWith(QLatin1String(".gz"))) {
        return {Kind::Gzip, name, {}};
    }
    const qsizetype zipAt = name.indexOf(zipMarker);
    const qsizetype xlsxAt = zipAt < 0 ? name.indexOf(xlsxMarker) : -1;
    if (zipAt >= 0) {
        return {Kind::Zip, name.left(zipAt + 4), name.mid(zipAt + zipMarker.size())};
    }
    if (xlsxAt >= 0) {
        // Kept for saved graphs: the archive's name is cut at the position of ".zip@", which is -1
        // here, so that four characters remain. Saved graphs with such names must not start to read
        // another file (InputName.KindsAreTestedInOrder).
        return {Kind::Zip, name.left(zipAt + 5), name.mid(xlsxAt + xlsxMarker.size())};
    }
    // Tested after the markers: "a.zip@b.zip" is a member, not an archive.
    if (name.endsWith(QLatin1String(".zip"))) {
        return {Kind::Zip, name, {}};
    }
    if (name.endsWith(QLatin1String(".Z"))) {
        return {Kind::Compress, name, {}};
    }
    return {Kind::Plain, name, {}};
}

} // namespace corvanta::input
