// corvanta/corvanta_graph.h
// A graph file in memory: variables, actions with their parameters, links.
#pragma once
#include "corvanta/export.h"
#include "corvanta/xml_node.h"

#include <QMap>
#include <QString>
#include <QVector>

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
    /// What is wrong with a graph, and where: "orders.graph:12: ...".
    struct Problem
    {
        QString text;
    };

    double version = -1; ///< of the host that saved it; negative: not named, so new
    QMap<QString, QString> variables;
    QVector<Action> actions;
    QVector<Link> links;
    QString fileName; ///< for messages and for the folder of relative names

    /// Read a graph file. What cannot be understood is added to `problems`; the graph is then of no
    /// use.
    static CorvantaGraph load(const QString &fileName, QVector<Problem> *problems);
    static CorvantaGraph parse(const QByteArray &document, const QString &fileName,
                               QVector<Problem> *problems);
    /// The document to save.
    QByteArray toXml() const;

    /// Everything that makes the graph impossible to run: unknown types, ids, links, loops,
    /// variables. `given` are variables set from outside.
    QVector<Problem> validate(const corvanta::ActionRegistry &registry,
                              const QMap<QString, QString> &given) const;

    int indexOf(const QString &id) const; ///< -1: no such action
    /// "ID:PIN" taken apart; false when it is not of that form.
    static bool parsePin(const QString &text, Pin *pin);
};
