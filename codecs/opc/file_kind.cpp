// The first bytes of the kinds:
//
//   a zip file, a compound file      see base/text/binary_kind.cpp
//   09 version 04..10 00             a BOF record without a compound file (MS-XLS, 2.4.21)
//   [EF BB BF] "<"                   a text with markup
#include "codecs/opc/file_kind.h"

#include "base/text/binary_kind.h"
#include "codecs/opc/compound_file.h"

#include <QByteArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::opc {

namespace {

/// The second byte of the record's number is the version of the workbook.
bool isBofVersion(char version)
{
    return version == 0 || version == 2 || version == 4 || version == 8;
}

/// Whether the records of a legacy workbook begin here: BOF of version 2, 3, 4 or 5 and later
/// (MS-XLS, 2.4.21).
bool startsWithBof(const QByteArray &beginning)
{
    return beginning.size() >= 4 && beginning[0] == '\x09' && isBofVersion(beginning[1]) &&
           beginning[2] >= 4 && beginning[2] <= 16 && beginning[3] == 0;
}

/// The kind of a text, by its first letters.
FileKind kindOfText(const QByteArray &beginning)
{
    QByteArray text = beginning.startsWith("\xEF\xBB\xBF") ? beginning.mid(3) : beginning;
    text = text.trimmed().toLower();
    if (text.contains("urn:schemas-microsoft-com:office:spreadsheet") && text.startsWith("<?xml")) {
        return FileKind::XmlSpreadsheet;
    }
    if (text.startsWith("<!doctype html") || text.contains("<html") || text.startsWith("<table")) {
        return FileKind::Html;
    }
    if (text.startsWith('<')) {
        return FileKind::Xml;
    }
    const auto isBinary = [](char c) { return c >= 0 && c < ' ' && (c < '\t' || c > '\r'); };
    const bool isUtf16 = beginning.startsWith("\xFF\xFE") || beginning.startsWith("\xFE\xFF");
    return isUtf16 || std::none_of(text.begin(), text.end(), isBinary) ? FileKind::Text
                                                                       : FileKind::Other;
}

} // namespace

FileKind fileKind(ByteSource &source)
{
    constexpr qsizetype kBeginningBytes = 4096;
    QByteArray beginning(kBeginningBytes, '\0');
    const qint64 size =
        source.seek(0) ? readFully(source, beginning.data(), kBeginningBytes) : qint64(-1);
    if (size <= 0) {
        return size == 0 ? FileKind::Empty : FileKind::Other;
    }
    beginning.truncate(size);
    const BinaryKind kind = binaryKind({beginning.constData(), static_cast<size_t>(size)});
    if (kind == BinaryKind::Zip) {
        return FileKind::Package;
    }
    if (kind == BinaryKind::Compound && source.seek(0)) {
        return compoundFileKind(source) == CompoundFile::Encrypted ? FileKind::Encrypted
                                                                   : FileKind::Compound;
    }
    if (startsWithBof(beginning)) {
        return FileKind::Records;
    }
    if (kind == BinaryKind::Pdf) {
        return FileKind::Pdf;
    }
    return beginning.startsWith("{\\rtf") ? FileKind::RichText : kindOfText(beginning);
}

QString describe(FileKind kind)
{
    switch (kind) {
    case FileKind::Empty:
        return u"an empty file"_s;
    case FileKind::Package:
        return u"an Office package or another zip file"_s;
    case FileKind::Encrypted:
        return u"an Office file with a password"_s;
    case FileKind::Compound:
    case FileKind::Records:
        return u"a legacy workbook (.xls) or another binary Office file"_s;
    case FileKind::Html:
        return u"an HTML page"_s;
    case FileKind::XmlSpreadsheet:
        return u"an XML spreadsheet of 2003"_s;
    case FileKind::Xml:
        return u"an XML file"_s;
    case FileKind::Pdf:
        return u"a PDF document"_s;
    case FileKind::RichText:
        return u"an RTF document"_s;
    case FileKind::Text:
        return u"a text file, perhaps CSV"_s;
    case FileKind::Other:
        break;
    }
    return u"neither a workbook nor a text"_s;
}

} // namespace corvanta::opc
