// Finds out what to open for an argument, and which format it has.
#include "cli/convert/file_arguments.h"

#include "base/nearest_name.h"
#include "base/text/binary_kind.h"
#include "base/text/packed_name.h"
#include "base/text/unmarked_utf16.h"
#include "cli/file_types.h"
#include "cli/visible_text.h"
#include "corvanta/files.h"
#include "corvanta/input_source.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

using Use = FileFormat::Use;

constexpr auto kInputName = "/dev/stdin"_L1;
constexpr auto kOutputName = "/dev/stdout"_L1;
constexpr auto kStream = "-"_L1;
constexpr auto kRar = ".rar"_L1;

/// The formats that can be written to standard output: in order, without seeking.
bool isStreamed(const QString &extension)
{
    static const QStringList all{u"csv"_s,  u"tsv"_s,   u"txt"_s,    u"tab"_s,
                                 u"json"_s, u"jsonl"_s, u"ndjson"_s, u"xml"_s};
    return all.contains(extension);
}

/// In lower case, without what says that the file is compressed.
QString extensionOf(Use use, const QString &name)
{
    const auto lastOf = [](const QString &text) {
        return text.mid(text.lastIndexOf(u'.') + 1).toLower();
    };
    const QString inner = lastOf(withoutPacking(name));
    // Only gzip is written, and only what is written in order can be packed.
    const bool isPacked = use == Use::Read || (name.endsWith(".gz"_L1) && isStreamed(inner));
    return isPacked ? inner : lastOf(name);
}

/// The format of --from or --to; empty without the option.
CommandResult<QString> givenFormat(const CommandLine &line, Use use, const ActionRegistry &registry)
{
    const QString option = use == Use::Read ? u"--from"_s : u"--to"_s;
    QString format = line.value(option, QString()).toLower();
    format.remove(0, format.startsWith(u'.') ? 1 : 0);
    const QStringList known = knownExtensions(registry, use).split(u' ');
    if (line.values.contains(option) && !known.contains(format)) {
        return badUsage(u"%1: unknown format '%2'%3 (supported: %4)"_s.arg(
            option, format, nearestNameHint(format, known), known.join(u' ')));
    }
    return format;
}

/// A file that exists is meant itself, even if its name has such signs.
bool isPattern(const QString &name)
{
    return (name.contains(u'*') || name.contains(u'?')) && !QFileInfo::exists(name);
}

/// Patterns have the same meaning as in the parameters of readers.
QStringList matchesOf(const QString &pattern)
{
    QStringList names;
    listFiles(pattern, &names);
    return names;
}

/// The members that can be read: all with the format `format`, or with any known one.
QStringList readableMembers(const QStringList &members, const QString &format,
                            const ActionRegistry &registry)
{
    const QStringList known = knownExtensions(registry, Use::Read).split(u' ');
    QStringList readable;
    for (const QString &member : members) {
        const QString extension = member.mid(member.lastIndexOf(u'.') + 1).toLower();
        // What an operating system adds to archives is not data.
        const bool isData = !member.startsWith("__MACOSX/"_L1);
        if (isData && (format.isEmpty() ? known.contains(extension) : extension == format)) {
            readable << member;
        }
    }
    // A format that is given also fits another name.
    return readable.isEmpty() && !format.isEmpty() ? members : readable;
}

/// A list of members, one per line.
QString listOf(const QString &archive, const QStringList &members)
{
    constexpr qsizetype kListed = 50;
    QString text;
    for (const QString &member : members.first(std::min(members.size(), kListed))) {
        text += u"\n  "_s + visibleText(archive + u'@' + member);
    }
    return members.size() > kListed ? text + u"\n  ..."_s : text;
}

Fault<ExitStatus> unreadable(const QString &archive, const QString &reason)
{
    return {kFailed, u"cannot read the archive '%1': %2"_s.arg(archive, reason)};
}

QString formatOf(const QString &member, const QString &format)
{
    return format.isEmpty() ? extensionOf(Use::Read, member) : format;
}

/// A member of a RAR archive, which is read by the name of the archive if it is the first one.
CommandResult<FileArgument> rarMember(const QString &archive, const QString &member,
                                      const QStringList &members, const QString &format)
{
    if (member != members[0]) {
        return badUsage(
            u"only the first file of a RAR archive can be read, and that of '%1' is '%2'; unpack the archive to read '%3'"_s
                .arg(archive, members[0], member));
    }
    return FileArgument{archive, formatOf(member, format)};
}

/// The only member of an archive that can be read.
CommandResult<FileArgument> memberOf(const QString &archive, const QString &format,
                                     const ActionRegistry &registry)
{
    const auto members = input::archiveMembers(archive);
    if (!members) {
        return unreadable(archive, members.fault().detail);
    }
    const QStringList readable = readableMembers(*members, format, registry);
    if (readable.isEmpty()) {
        return badUsage(u"the archive '%1' has no file of a known format (see --from)%2"_s.arg(
            archive,
            members->isEmpty() ? QString() : u". It contains:"_s + listOf(archive, *members)));
    }
    if (readable.size() > 1) {
        const QString limit = archive.endsWith(kRar)
                                  ? u" (the first file of a RAR archive; unpack it for others)"_s
                                  : QString();
        return badUsage(
            u"the archive '%1' contains %2 files that can be read. Choose one%3:%4"_s.arg(
                archive, QString::number(readable.size()), limit, listOf(archive, readable)));
    }
    return archive.endsWith(kRar)
               ? rarMember(archive, readable[0], *members, format)
               : CommandResult<FileArgument>(
                     FileArgument{archive + u'@' + readable[0], formatOf(readable[0], format)});
}

/// The file of "archive.rar@member"; nothing for other words.
std::optional<CommandResult<FileArgument>> namedRarMember(const QString &word,
                                                          const QString &format)
{
    const qsizetype at = word.indexOf(".rar@"_L1);
    if (at < 0 || QFileInfo::exists(word)) {
        return std::nullopt;
    }
    const QString archive = word.left(at + kRar.size());
    const auto members = input::archiveMembers(archive);
    return members ? rarMember(archive, word.mid(archive.size() + 1), *members, format)
                   : unreadable(archive, members.fault().detail);
}

/// What to do with a file of this kind that has the name of a text.
const char *remedyFor(BinaryKind kind)
{
    switch (kind) {
    case BinaryKind::Zip:
        return "--from xlsx reads it if it is a workbook; save an archive under a name that ends "
               "in .zip";
    case BinaryKind::Compound:
        return "--from xls reads it if it is a workbook";
    case BinaryKind::Parquet:
        return "--from parquet reads it";
    case BinaryKind::Gzip:
        return "rename it to end in .gz";
    case BinaryKind::Rar:
        return "rename it to end in .rar";
    case BinaryKind::Spss:
        return "--from sav reads it";
    case BinaryKind::None:
    case BinaryKind::Pdf:
    case BinaryKind::Image:
    case BinaryKind::Program:
        break;
    }
    return "it cannot be read";
}

/// Number of the line of the first zero byte, from 1.
qsizetype lineOfZero(QByteArrayView bytes)
{
    return bytes.first(bytes.indexOf('\0')).toByteArray().count('\n') + 1;
}

} // namespace

CommandResult<void> checkClobber(const CommandLine &line, const QString &target)
{
    const QFileInfo info(target);
    const bool exists = target != kStream && (info.exists() || info.isSymLink());
    if (line.has(u"--no-clobber"_s) && exists) {
        return Fault{kFailed, u"'%1' exists already, and --no-clobber keeps it"_s.arg(target)};
    }
    return {};
}

QString withoutArchive(const QString &name)
{
    // Names of other files may have an "@" too.
    const auto marker = ".zip@"_L1;
    const qsizetype at = name.indexOf(marker);
    return at < 0 ? name : name.mid(at + marker.size());
}

QString stemOf(const QString &name)
{
    const QString last = withoutPacking(QFileInfo(name).fileName());
    const qsizetype dot = last.lastIndexOf(u'.');
    return dot > 0 ? last.left(dot) : last;
}

/// Links and relative names are resolved before the comparison.
bool isSameFile(const QString &a, const QString &b)
{
    const QString name = QFileInfo(a).canonicalFilePath();
    return !name.isEmpty() && name == QFileInfo(b).canonicalFilePath();
}

CommandResult<FileArgument> inputFile(const CommandLine &line, const QString &word,
                                      const ActionRegistry &registry)
{
    const auto format = givenFormat(line, Use::Read, registry);
    if (!format) {
        return format.fault();
    }
    if (word == kStream) {
        return format->isEmpty() ? badUsage(u"'-' is standard input: --from FORMAT must name its "
                                            "format (for example --from csv)"_s)
                                 : CommandResult<FileArgument>(FileArgument{kInputName, *format});
    }
    if (const auto member = namedRarMember(word, *format)) {
        return *member;
    }
    if (input::isArchive(word)) {
        return memberOf(word, *format, registry);
    }
    FileArgument file{word, format->isEmpty() ? extensionOf(Use::Read, word) : *format};
    const QStringList known = knownExtensions(registry, Use::Read).split(u' ');
    if (isPattern(word) && !known.contains(file.extension)) {
        file.extension = extensionOf(Use::Read, matchesOf(word).value(0));
    }
    return file;
}

CommandResult<FileArgument> outputFile(const CommandLine &line, const QString &word,
                                       const ActionRegistry &registry)
{
    const auto format = givenFormat(line, Use::Write, registry);
    if (!format) {
        return format.fault();
    }
    if (word != kStream) {
        return FileArgument{word, format->isEmpty() ? extensionOf(Use::Write, word) : *format};
    }
    if (!isStreamed(*format)) {
        return badUsage(u"'-' is standard output: --to FORMAT must name its format, one of csv, "
                        "tsv, json, jsonl and xml"_s);
    }
    return FileArgument{kOutputName, *format};
}

/// A shell has expanded patterns without quotes; the others are expanded here.
QStringList inputWords(const CommandLine &line)
{
    QStringList words = line.arguments.first(line.arguments.size() - 1);
    if (words.size() == 1 && !line.has(u"--union"_s)) {
        return words; // a reader joins the files of a pattern itself
    }
    return expandedPatterns(words);
}

QStringList expandedPatterns(const QStringList &words)
{
    QStringList all;
    for (const QString &word : words) {
        all += isPattern(word) ? matchesOf(word) : QStringList(word);
    }
    return all;
}

CommandResult<void> checkNotPattern(const QString &name)
{
    QStringList names;
    listFiles(name, &names);
    if (names.removeOne(name) && !names.isEmpty()) {
        return badUsage(
            u"the name of the file '%1' is a pattern that matches '%2', too; rename the file"_s.arg(
                name, names.first()));
    }
    return {};
}

CommandResult<QVector<ListedName>> namesInList(const QString &fileName, const QString &option)
{
    QFile file(fileName);
    const bool isFolder = QFileInfo(fileName).isDir();
    const bool isOpen = fileName == kStream ? file.open(stdin, QIODevice::ReadOnly)
                                            : !isFolder && file.open(QIODevice::ReadOnly);
    if (!isOpen) {
        return badUsage(u"%1: cannot read the list '%2': %3"_s.arg(
            option, fileName, isFolder ? u"it is a folder"_s : file.errorString()));
    }
    constexpr qint64 kMaxBytes = 256LL << 20; // millions of names
    const QByteArray bytes = file.read(kMaxBytes + 1);
    if (bytes.size() > kMaxBytes) {
        return badUsage(
            u"%1: the list '%2' is larger than 256 MiB; use several"_s.arg(option, fileName));
    }
    const auto notList = [&](const QString &why) {
        return badUsage(u"%1: '%2' is not a list of file names (%3); a list is a text with one "
                        "name per line"_s.arg(option, fileName, why));
    };
    if (bytes.contains('\0')) {
        return notList(u"it has a zero byte"_s);
    }
    const QString text = QString::fromUtf8(bytes); // without a byte-order mark
    QVector<ListedName> names;
    qsizetype number = 0;
    for (QStringView line : QStringView(text).split(u'\n')) {
        ++number;
        line = line.endsWith(u'\r') ? line.chopped(1) : line;
        constexpr qsizetype kMaxName = 4096; // PATH_MAX; a message would have the whole data file
        if (line.size() > kMaxName) {
            return notList(u"line %1 is too long for a name"_s.arg(number));
        }
        if (!line.trimmed().isEmpty()) {
            names << ListedName{line.toString(), number};
        }
    }
    if (names.isEmpty()) {
        return badUsage(u"%1: the list '%2' is empty"_s.arg(option, fileName));
    }
    return names;
}

QString inputThatIsOutput(const CommandLine &line)
{
    for (const QString &name : expandedPatterns(inputWords(line))) {
        if (isSameFile(name, line.arguments.last())) {
            return name;
        }
    }
    return {};
}

/// Text readers accept any bytes: without this check a picture would become a table.
QString binaryContent(const QString &fileName)
{
    constexpr qint64 kExamined = 4096;
    constexpr qsizetype kFewZeros = 8; // a text may have some; its reader says what they become
    // A pipe would lose what is read here.
    if (!QFileInfo(fileName).isFile()) {
        return {};
    }
    const auto file = MyReadFile::open(fileName);
    QByteArray bytes(kExamined, '\0');
    bytes.truncate(file ? std::max<qint64>((*file)->read(bytes.data(), kExamined), 0) : 0);
    const std::string_view text(bytes.data(), static_cast<size_t>(bytes.size()));
    const BinaryKind kind = binaryKind(text);
    if (kind == BinaryKind::Gzip && fileName == kInputName) {
        return {}; // standard input has no extension that could say so
    }
    if (kind != BinaryKind::None) {
        return u"it begins like %1; %2"_s.arg(QLatin1StringView(describe(kind)),
                                              QLatin1StringView(remedyFor(kind)));
    }
    const bool hasMark = text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF");
    if (bytes.count('\0') < kFewZeros || hasMark || unmarkedUtf16(text) != nullptr) {
        return {};
    }
    return u"there is a zero byte in line %1; --encoding NAME reads it if that is a text in "
           u"another "
           "encoding"_s.arg(lineOfZero(bytes));
}
