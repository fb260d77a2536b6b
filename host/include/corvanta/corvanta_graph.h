// A graph file in memory: variables, actions with their parameters, links.
//
//     <graph version='1'>
//       <variable name='year' value='2024'/>
//       <action id='in' x='0' y='0'><readCSV fileName='${year}.csv'/></action>
//       <action id='out'><writeCSV fileName='copy.csv'/></action>
//       <link from='in:0' to='out:0'/>
//     </graph>
#pragma once
#include "base/result.h"
#include "corvanta/export.h"
#include "corvanta/xml_node.h"

#include <QMap>
#include <QString>
#include <QVector>

#include <optional>

class ActionItem;
class GlobalParameters;
struct ParameterProblem;

namespace corvanta {
class ActionRegistry;
}

/// A plain value; nothing in it has been checked until validate() is called.
/// Threads: one at a time.
class CORVANTA_EXPORT CorvantaGraph
{
public:
    /// A node of the graph.
    struct Action
    {
        QString id;         ///< unique in its graph
        XMLNode parameters; ///< the element named after the action's type
        double x = 0;       ///< position in the editor
        double y = 0;
        QString comment;
        int line = 0; ///< in the file, 1-based; 0: not from a file
    };
    /// A pin of an action; input and output pins are numbered separately.
    struct Pin
    {
        QString action; ///< id
        int pin = 0;    ///< from 0
    };
    /// An edge from an output pin to an input pin. An output pin may have several links, an input
    /// pin has at most one.
    struct Link
    {
        Pin from;
        Pin to;
        int line = 0; ///< as in Action
    };
    /// Something that the user should correct: "orders.graph:12: ...".
    struct Problem
    {
        enum class Kind {
            Invalid, ///< the graph cannot be run
            Mistake, ///< an unknown name, or a value that is not allowed; a run ignores it
            Missing, ///< a run would fail: a file, a folder or a required value is missing
            Idle,    ///< nothing is linked to the action, so it gets no rows
            Hint,    ///< probably not intended
        };
        QString text;
        Kind kind = Kind::Invalid;
    };
    using Problems = QVector<Problem>;
    /// A graph, or everything that is wrong with its file.
    using Loaded = corvanta::Result<CorvantaGraph, Problems>;

    double version = -1;              ///< of the host that saved it; negative: none given, so new
    QMap<QString, QString> variables; ///< by name, without "${" and "}"
    QVector<Action> actions;
    QVector<Link> links;
    QString fileName;  ///< for messages; relative names are relative to its folder
    Problems mistakes; ///< parts of the file that load() has ignored; findMistakes() returns them

    /// Read a graph file. Checks its elements only; see validate().
    static Loaded load(const QString &fileName);
    /// Parse the text of a graph file; `fileName` is for messages and relative names.
    static Loaded parse(const QByteArray &document, const QString &fileName);
    /// The document to save, in UTF-8. parse() of it gives the same variables, actions and links.
    QByteArray toXml() const;

    /// Find everything that makes the graph invalid: unknown types, invalid links, loops, unknown
    /// variables. `given` are variables set on the command line. Empty for a valid graph.
    Problems validate(const corvanta::ActionRegistry &registry,
                      const QMap<QString, QString> &given) const;

    /// Find the mistakes that a run ignores, and actions that get no rows; looks up no file. The
    /// graph has passed validate() with the same variables.
    Problems findMistakes(const corvanta::ActionRegistry &registry,
                          const QMap<QString, QString> &given) const;
    /// Find everything that the user should know before a run, none of it Invalid: mistakes, what
    /// is missing, hints. Names are relative to `outDir` as in RunOptions. Looks up files; opens
    /// only those that ActionParameters::problems() may open.
    Problems check(const corvanta::ActionRegistry &registry, const QMap<QString, QString> &given,
                   const QString &outDir) const;
    /// The names of the files that a run would write, in the order of the actions, each once; with
    /// "*" in place of what depends on the rows. The graph has passed validate().
    QStringList outputs(const corvanta::ActionRegistry &registry,
                        const QMap<QString, QString> &given, const QString &outDir) const;
    /// The names of the variables that parameters of actions refer to, known or not.
    QStringList usedVariables() const;
    /// Set the folders, the version and the variables that the actions of this graph see; `given`
    /// override the variables of the graph.
    void applyTo(GlobalParameters *global, const QMap<QString, QString> &given,
                 const QString &outDir) const;

    /// True if an action of the graph has the output pin, which a listener can then read. False
    /// also for an unknown action or type.
    bool hasOutputPin(const corvanta::ActionRegistry &registry, const Pin &pin) const;
    /// The part of this graph that the action `id` depends on, with the action itself.
    CorvantaGraph upTo(const QString &id) const;
    /// Index in `actions`; -1 if there is no such action.
    int indexOf(const QString &id) const;
    /// Split "ID:PIN" at its last colon, PIN being at most 10,000; returns nothing if `text` is not
    /// of that form.
    static std::optional<Pin> parsePin(const QString &text);
};

/// What check() finds about the values of an action as they are now, for a panel. Looks up files,
/// opens none. None for an action that does not declare its parameters.
CORVANTA_EXPORT QVector<ParameterProblem> valueProblems(const ActionItem &item);
/// The part of the name of an input that is a file: that of "archive.zip@member" is the archive.
CORVANTA_EXPORT QString fileOfInput(const QString &name);
