// The command line and the shell script that do what the editor's Run does.
#pragma once
#include <QString>

namespace corvanta::studio {

/// `text` as one word of a POSIX shell.
QString shellWord(const QString &text);

/// The command that runs a saved graph: corvanta run 'orders 2026.graph'
QString runCommandText(const QString &graphFile);

/// A script for /bin/sh that runs the graph, to be saved as `scriptFile`. It names the graph
/// relative to itself, so both can be moved together, and passes its options on to the run.
QString runScriptText(const QString &graphFile, const QString &scriptFile);

} // namespace corvanta::studio
