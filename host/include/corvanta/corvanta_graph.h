// corvanta/corvanta_graph.h
// A graph file in memory: variables, actions with their parameters, links.
#pragma once
#include "base/result.h"
#include "corvanta/export.h"
#include "corvanta/xml_node.h"

#include <QMap>
#include <QString>
#include <QVector>

#include <optional>

namespace corvanta {
class ActionRegistry;
}

/// Threads: one at a time.
class CORVANTA_EXPORT CorvantaGraph
{
public:
    struct Action
    {
        QString id;
        XMLNode parameters; ///< the element named after the action's type
        double x = 0;       ///< place in the editor
        double y = 0;
        QString comment;
        int line = 0;
    };
    struct Pin
    {
        QString action;
        int pin = 0;
    };
    struct Link
    {
        Pin from;
        Pin to;
        int line = 0;
    };
    /// Something that makes a graph invalid: "orders.graph:12: ...".
    struct Problem
    {
        QString text;
    };
    using Problems = QVector<Problem>;
    /// A graph, or everything that is wrong with its file.
    using Loaded = corvanta::Result<CorvantaGraph, Problems>;

    double version = -1; ///< of the host that saved it; negative: not named, so new
    QMap<QString, QString> variables;
    QVector<Action> actions;
    QVector<Link> links;
    QString fileName; ///< for messages and for the folder of relative names

    /// Read a graph file. Checks its elements only; see validate().
    static Loaded load(const QString &fileName);
    /// Parse the text of a graph file; `fileName` is for messages and relative names.
    static Loaded parse(const QByteArray &document, const QString &fileName);
    /// The document to save.
    QByteArray toXml() const;

    /// Everything that makes the graph impossible to run: unknown types, ids, links, loops,
    /// variables. `given` are variables set from outside.
    Problems validate(const corvanta::ActionRegistry &registry,
                      const QMap<QString, QString> &given) const;

    int indexOf(const QString &id) const; ///< -1: no such action
    /// Split "ID:PIN"; returns nothing if `text` is not of that form.
    static std::optional<Pin> parsePin(const QString &text);
};
