// What a run in another process reports: the JSON lines of "corvanta run --log-format json
// --progress lines" (docs/command-line.md).
//
// Threads: pure functions.
#pragma once
#include "studio/document/run_state.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>
#include <variant>

namespace corvanta::studio {

/// A message for the log.
struct RunMessage
{
    int level = 0;  ///< see MainUI::LogLevel
    QString action; ///< id; empty: it concerns the whole run
    QString text;   ///< without line feeds at both ends
};

/// The state of all actions at one moment.
struct RunProgress
{
    /// An action by its id.
    struct Action
    {
        QString id;
        RunState state;
    };
    QVector<Action> actions;
};

/// What a run has done, its last line.
struct RunSummary
{
    qint64 rows = 0;        ///< that were read
    QStringList files = {}; ///< that were written
};

using RunLine = std::variant<RunMessage, RunProgress, RunSummary>;

/// Parse a line, with or without its line feed. Nothing for a line that is not such an object: only
/// a crash writes one.
std::optional<RunLine> parseRunLine(const QByteArray &line);

} // namespace corvanta::studio
