// Words are quoted for a POSIX shell, so that any file name is one word of the command.
#include "studio/shell/command_text.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

QString shellWord(const QString &text)
{
    static const QRegularExpression plain(u"^[A-Za-z0-9_./:=+@%-]+$"_s);
    // Between apostrophes all letters are plain, except the apostrophe itself.
    const QString quoted = u'\'' + QString(text).replace(u"'"_s, u"'\\''"_s) + u'\'';
    return plain.match(text).hasMatch() ? text : quoted;
}

QString runCommandText(const QString &graphFile)
{
    // A name that begins with "-" would be an option; an absolute one does not.
    return u"corvanta run "_s + shellWord(QFileInfo(graphFile).absoluteFilePath());
}

QString runScriptText(const QString &graphFile, const QString &scriptFile)
{
    // Relative to the script, so that both can be copied to another machine.
    const QDir folder = QFileInfo(scriptFile).absoluteDir();
    const QString name = folder.relativeFilePath(QFileInfo(graphFile).absoluteFilePath());
    // A line feed in the name would end the comment, and the rest would be a command.
    const QString comment = QFileInfo(graphFile).fileName().replace(u'\n', u' ');
    // Without changing the folder: options may have names relative to that of the caller.
    return u"#!/bin/sh\n"
           "# Runs %1; options such as --set NAME=VALUE are passed on.\n"
           "set -eu\n"
           "folder=$(CDPATH='' cd -- \"$(dirname -- \"$0\")\" && pwd)\n"
           "exec corvanta run \"$folder\"/%2 \"$@\"\n"_s.arg(comment, shellWord(name));
}

} // namespace corvanta::studio
