// The files that a command line names: "-", formats that replace the extension, archives.
#pragma once
#include "cli/command_line.h"
#include "corvanta/action_registry.h"

/// A file with its format.
struct FileArgument
{
    QString name;      ///< as a graph names it: "archive.zip@member" for a member
    QString extension; ///< of its format, in lower case, without ".gz"
};

/// The input `word`. "-" is standard input; of an archive without a member it is the only one that
/// can be read. The fault is a usage error, or kFailed for an archive that cannot be read.
CommandResult<FileArgument> inputFile(const CommandLine &line, const QString &word,
                                      const corvanta::ActionRegistry &registry);
/// The output `word`. "-" is standard output. The fault is a usage error.
CommandResult<FileArgument> outputFile(const CommandLine &line, const QString &word,
                                       const corvanta::ActionRegistry &registry);

/// The inputs of a command whose last argument is the output. With --union, and among several, a
/// pattern is replaced by the files that it matches.
QStringList inputWords(const CommandLine &line);

/// The words with each pattern replaced by the files that it matches, sorted by name. A word that
/// is the name of a file, or matches nothing, stays.
QStringList expandedPatterns(const QStringList &words);

/// Check that actions, which expand * and ?, take the absolute name of a file for this file only.
/// The fault is a usage error. A name without a file may be a pattern.
CommandResult<void> checkNotPattern(const QString &name);

/// A name with its place in a list, for messages.
struct ListedName
{
    QString name;
    qsizetype line = 0; ///< from 1; 0 for a file that matches a pattern
};
/// The names in the list of `option`, UTF-8, one per line, at least one; "-" is standard input.
/// Blank lines are ignored. The fault is a usage error.
CommandResult<QVector<ListedName>> namesInList(const QString &fileName, const QString &option);

/// With --no-clobber an existing target is an error, before anything is read. A link without a file
/// would be written through, so it exists too. The fault is kFailed.
CommandResult<void> checkClobber(const CommandLine &line, const QString &target);

/// The name without the archive that holds the file.
QString withoutArchive(const QString &name);
/// The name without folders, its extension and what says how the file is compressed.
QString stemOf(const QString &name);

/// Whether both names are those of one file that exists.
bool isSameFile(const QString &a, const QString &b);
/// The input that is also the output, which is the last argument; empty if there is none.
QString inputThatIsOutput(const CommandLine &line);

/// Why a file that should be text is not: it begins like a file of another format, or holds zero
/// bytes. Empty for text, and for what cannot be examined without reading it.
QString binaryContent(const QString &fileName);
