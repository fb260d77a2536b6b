// Makes the names of the files that one output is split into.
//
// Threads: the functions have no state.
#pragma once
#include <QString>

namespace corvanta {

/// A value as a part of a file name. The part of an empty value is empty, not null.
///
/// Characters that file systems reserve (control characters and < > : " / \ | ? *) become a percent
/// sign and two hexadecimal digits, and so does a percent sign before two such digits; the values
/// "." and ".." become them as a whole. Different values therefore have different names. A part of
/// more than 200 bytes of UTF-8 is cut, with a digest of the whole value at its end.
QString fileNamePart(const QString &value);

/// `name` with `part` before the extension of its last component, or at the end without one.
QString withPartBeforeExtension(const QString &name, const QString &part);

} // namespace corvanta
