// writers/split_name.h
// Names of the files that one output is split into.
#pragma once
#include <QString>

namespace corvanta {

/// A value as a part of a file name; empty, not null, for an empty one.
///
/// What a file system takes apart or refuses (control characters and < > : " / \ | ? *) becomes a
/// percent sign and two hexadecimal digits for each UTF-8 byte, and so does a percent sign that
/// would look like one of these; "." and ".." alone become them too. Different values therefore
/// have different names. A name beyond 200 bytes of UTF-8 is cut, with a digest of the whole value
/// at its end.
QString fileNamePart(const QString &value);

/// `name` with `part` in front of the extension of its last part, or at the end when it has none.
QString withPartBeforeExtension(const QString &name, const QString &part);

} // namespace corvanta
