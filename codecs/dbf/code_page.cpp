// Marks are numbers of languages, each with the code page of DOS, Windows or the Macintosh that it
// was written with (public source: the manual of Visual FoxPro, and lists of dBase's drivers).
#include "codecs/dbf/code_page.h"

#include <QByteArray>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace corvanta::dbf {

namespace {

struct CodePage
{
    const char *name; // for iconv
    QByteArrayView marks;
};

// 57 is "the code page of the system": that of Western Europe, as in tables without a mark.
const CodePage kCodePages[] = {
    {"CP437", "\x01\x09\x0B\x0D\x0F\x11\x15\x18\x19\x1B"},
    {"CP850", "\x02\x0A\x0E\x10\x12\x14\x16\x1A\x1D\x25\x37"},
    {"CP1252", "\x03\x57\x58\x59"},
    {"MACINTOSH", "\x04"},
    {"CP865", "\x08\x17\x66"},
    {"CP932", "\x13\x7B"},
    {"CP863", "\x1C\x6C"},
    {"CP852", "\x1F\x22\x23\x40\x64\x87"},
    {"CP860", "\x24"},
    {"CP866", "\x26\x65"},
    {"GBK", "\x4D\x7A"},
    {"CP949", "\x4E\x79"},
    {"CP950", "\x4F\x78"},
    {"CP874", "\x50\x7C"},
    {"CP861", "\x67"},
    {"CP737", "\x6A\x86"},
    {"CP857", "\x6B\x88"},
    {"CP1255", "\x7D"},
    {"CP1256", "\x7E"},
    {"MAC-CYRILLIC", "\x96"},
    {"MAC-CENTRALEUROPE", "\x97"},
    {"CP1250", "\xC8"},
    {"CP1251", "\xC9"},
    {"CP1254", "\xCA"},
    {"CP1253", "\xCB"},
    {"CP1257", "\xCC"},
    {"UTF-8", "\xF0"}, // of programs that have no code page for it
};

} // namespace

QString encodingOfMark(uchar mark)
{
    const auto *const found =
        std::find_if(std::begin(kCodePages), std::end(kCodePages), [mark](const CodePage &page) {
            return mark != 0 && page.marks.contains(static_cast<char>(mark));
        });
    return found == std::end(kCodePages) ? QString() : QString::fromLatin1(found->name);
}

QString encodingOfCpg(QByteArrayView text)
{
    QString name = QString::fromLatin1(text.trimmed()).toUpper();
    for (const QString &prefix : {u"ANSI "_s, u"OEM "_s, u"ISO "_s}) {
        name = name.startsWith(prefix) ? name.mid(prefix.size()) : name;
    }
    bool isNumber = false;
    name.toUInt(&isNumber);
    if (!isNumber) {
        return name;
    }
    const QString iso = u"8859"_s;
    return name.startsWith(iso) && name.size() > iso.size() ? u"ISO-8859-"_s + name.mid(iso.size())
                                                            : u"CP"_s + name;
}

} // namespace corvanta::dbf
