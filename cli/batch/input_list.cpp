// Reads lists of input files, expands patterns, and checks both.
#include "cli/batch/input_list.h"

#include "cli/convert/file_arguments.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <filesystem>
#include <system_error>
#include <unordered_map>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

using ListedNames = CommandResult<QVector<ListedName>>;

bool hasWildcard(const QString &name)
{
    return name.contains(u'*') || name.contains(u'?');
}

/// A pattern in which brackets are literal, as in the parameters of readers.
QString withLiteralBrackets(QString pattern)
{
    return pattern.replace(u'[', "[[]"_L1);
}

/// The folders that match the parts of a folder's name.
QStringList foldersOf(const QString &pattern)
{
    if (!hasWildcard(pattern)) {
        return {pattern};
    }
    const QFileInfo info(pattern);
    QStringList folders;
    for (const QString &parent : foldersOf(info.path())) {
        const QDir folder(parent);
        const QStringList filter{withLiteralBrackets(info.fileName())};
        for (const QString &name : folder.entryList(
                 filter, QDir::Dirs | QDir::NoDotAndDotDot | QDir::CaseSensitive, QDir::Name)) {
            folders << folder.filePath(name);
        }
    }
    return folders;
}

/// Whether listFiles() finds all files of the folder that match. Qt leaves out names that are not
/// UTF-8, and links without a file: data would be missing without a message. Hidden links are the
/// locks of editors.
CommandResult<void> checkAllFound(const QString &folder, const QString &pattern)
{
    const auto wanted =
        QRegularExpression::fromWildcard(withLiteralBrackets(pattern), Qt::CaseSensitive);
    std::error_code error; // then the folder has no files
    std::filesystem::directory_iterator entry(QFileInfo(folder).filesystemFilePath(), error);
    for (; entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const auto bytes = QByteArray::fromStdString(entry->path().filename().string());
        const QString name = QFile::decodeName(bytes);
        if (!wanted.match(name).hasMatch()) {
            continue;
        }
        const QString full = QDir(folder).filePath(name);
        if (QFile::encodeName(name) != bytes) {
            return badUsage(
                u"--inputs: the name of '%1' is not UTF-8; rename the file"_s.arg(full));
        }
        if (entry->is_symlink(error) && !entry->exists(error) && !name.startsWith(u'.')) {
            return badUsage(u"--inputs: '%1' is a link to a file that does not exist"_s.arg(full));
        }
    }
    return {};
}

/// listFiles() expands only the last part of a name, so the folders are expanded before.
ListedNames matchesOf(const QString &pattern)
{
    const QFileInfo info(pattern);
    QVector<ListedName> found;
    for (const QString &folder : foldersOf(info.path())) {
        if (const auto checked = checkAllFound(folder, info.fileName()); !checked) {
            return checked.fault();
        }
        const QString inFolder = QDir(folder).filePath(info.fileName());
        QStringList names;
        listFiles(inFolder, &names);
        for (const QString &name : names) {
            // A pattern without a match comes back.
            if (name != inFolder || QFileInfo(name).isFile()) {
                found << ListedName{name};
            }
        }
    }
    if (found.isEmpty()) {
        return badUsage(u"--inputs: no file matches '%1'"_s.arg(pattern));
    }
    return found;
}

/// The fault of a list of which `count` names are wrong; `first` is the message about one of them.
Fault<ExitStatus> wrongNames(const QString &first, qsizetype count)
{
    return badUsage(count == 1 ? first
                               : u"%1, and so %2 more"_s.arg(
                                     first, count == 2 ? u"is 1"_s : u"are %1"_s.arg(count - 1)));
}

/// "jan_orders" of the member "jan.zip@2026/orders.csv": a file that is named after it must not
/// have the name of a member, or readers would look for the archive.
QString stemOfInput(const QString &name)
{
    const QString member = withoutArchive(name);
    return member == name ? stemOf(name) : stemOf(fileOfInput(name)) + u'_' + stemOf(member);
}

} // namespace

QString InputFile::label() const
{
    return piece && piece->rowCount > 0
               ? u"%1 (rows %2 to %3)"_s.arg(file.name, QString::number(piece->firstRow),
                                             QString::number(piece->firstRow + piece->rowCount - 1))
               : file.name;
}

qint64 InputFile::bytes() const
{
    const bool isShare = piece && piece->fileRows > 0;
    return isShare ? static_cast<qint64>(static_cast<double>(file.size) *
                                         static_cast<double>(piece->rowCount) /
                                         static_cast<double>(piece->fileRows))
                   : file.size;
}

QMap<QString, QString> InputFile::variables() const
{
    QMap<QString, QString> all{{u"input"_s, file.name},
                               {u"inputStem"_s, stemOfInput(file.name)},
                               {u"inputIndex"_s, QString::number(index)}};
    if (piece) {
        all.insert(u"inputFirstRow"_s, QString::number(piece->firstRow));
        all.insert(u"inputRowCount"_s, QString::number(piece->rowCount));
        all.insert(u"inputPart"_s, QString::number(piece->part));
    }
    return all;
}

/// From an input without a file, so that the names are in one place.
QStringList inputVariables()
{
    return InputFile{{}, 0, InputPiece{}}.variables().keys();
}

/// Names become absolute, because tasks run in other folders.
CommandResult<QVector<InputFile>> readInputs(const QString &word)
{
    const bool isPattern = hasWildcard(word) && !QFileInfo::exists(word);
    const auto listed = isPattern ? matchesOf(word) : namesInList(word, u"--inputs"_s);
    if (!listed) {
        return listed.fault();
    }
    QVector<InputFile> inputs;
    inputs.reserve(listed->size());
    std::unordered_map<QString, qsizetype> lines;
    QStringList missing;
    QStringList repeated;
    for (const ListedName &item : *listed) {
        const QString name = QDir::cleanPath(QDir::current().absoluteFilePath(item.name));
        InputFile input{{name}, inputs.size() + 1};
        if (!input.file.examine()) {
            // A user may have named one input instead of a list.
            const QString place =
                item.line > 0 ? u" (line %1 of the list)"_s.arg(item.line) : QString();
            missing << u"--inputs: the file '%1'%2 is missing"_s.arg(item.name, place);
        }
        if (const auto [first, isNew] = lines.try_emplace(name, item.line); !isNew) {
            repeated << u"--inputs: '%1' is listed twice (lines %2 and %3)"_s.arg(
                item.name, QString::number(first->second), QString::number(item.line));
        }
        inputs << input;
    }
    for (const QStringList *wrong : {&repeated, &missing}) {
        if (!wrong->isEmpty()) {
            return wrongNames(wrong->first(), wrong->size());
        }
    }
    for (const InputFile &input : inputs) {
        if (const auto checked = checkNotPattern(input.file.name); !checked) {
            return checked.fault();
        }
    }
    return inputs;
}

CommandResult<QVector<InputFile>> inPieces(const QVector<InputFile> &inputs, const QString &rows)
{
    bool isNumber = false;
    const qint64 rowsOfPiece = rows.toLongLong(&isNumber);
    if (!isNumber || rowsOfPiece < 1) {
        return badUsage(u"--split-rows needs a number of rows, at least 1"_s);
    }
    ActionRegistry registry;
    registry.loadAll();
    QVector<InputFile> all;
    for (const InputFile &input : inputs) {
        const auto pieces = splitInput(input.file.name, rowsOfPiece, registry);
        if (!pieces) {
            return badUsage(u"--split-rows: '%1' cannot be divided: %2"_s.arg(input.file.name,
                                                                              pieces.fault().code));
        }
        for (const InputPiece &piece : *pieces) {
            all << InputFile{input.file, all.size() + 1, piece};
        }
    }
    return all;
}
