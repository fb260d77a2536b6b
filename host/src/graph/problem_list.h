// Collects what is wrong with a graph file, each with its place.
//
// Used by the reader and by the validator, so that all problems look alike.
#pragma once
#include "corvanta/corvanta_graph.h"

#include <utility>

namespace corvanta {

/// A list of problems of the form "FILE:LINE: text".
class ProblemList
{
public:
    using Kind = CorvantaGraph::Problem::Kind;

    /// `file` is the name to show; empty for a graph that has no file.
    explicit ProblemList(QString file)
        : m_file(std::move(file))
    {
    }
    /// Add a problem of line `line` (1-based; 0: of the whole file). `text` begins in lower case
    /// and has no full stop, because it follows the place.
    void add(qint64 line, const QString &text, Kind kind = Kind::Invalid)
    {
        if (m_file.isEmpty()) {
            m_problems.append({text, kind});
            return;
        }
        const QString place = line > 0 ? m_file + u':' + QString::number(line) : m_file;
        m_problems.append({place + QStringLiteral(": ") + text, kind});
    }
    /// In the order in which they were added; empty if nothing is wrong.
    const QVector<CorvantaGraph::Problem> &problems() const { return m_problems; }

private:
    QString m_file;
    QVector<CorvantaGraph::Problem> m_problems;
};

} // namespace corvanta
