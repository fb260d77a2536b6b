// Lines look like this; the first four members are in all of them:
//
//     {"level":3,"severity":"info","action":"","message":"...","progress":[{"action":"in","state":
//         "running","rowsIn":0,"rowsOut":[1024],"fraction":0.5}, ...]}
#include "studio/run/run_lines.h"

#include "base/mapped.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <iterator>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// An unknown name, of a newer program, counts as running.
NodeState stateOf(const QString &name)
{
    static const std::pair<QString, NodeState> states[] = {
        {u"waiting"_s, NodeState::Waiting}, {u"done"_s, NodeState::Done},
        {u"warned"_s, NodeState::Warning},  {u"failed"_s, NodeState::Failed},
        {u"stopped"_s, NodeState::Stopped},
    };
    for (const auto &[known, state] : states) {
        if (known == name) {
            return state;
        }
    }
    return NodeState::Running;
}

RunState stateOf(const QJsonObject &object)
{
    RunState state;
    state.state = stateOf(object["state"_L1].toString());
    const QJsonArray rows = object["rowsOut"_L1].toArray();
    for (const auto &count : rows) {
        state.rows << count.toInteger();
    }
    state.rowsIn = object["rowsIn"_L1].toInteger(-1);
    state.fraction = object["fraction"_L1].toDouble(-1);
    return state;
}

RunProgress::Action actionOf(const QJsonValue &value)
{
    return {value["action"_L1].toString(), stateOf(value.toObject())};
}

/// The listeners of a run, its taps, are actions too; they have no node.
RunProgress progressOf(const QJsonArray &array)
{
    return {mapped<QVector<RunProgress::Action>>(array, actionOf)};
}

RunSummary summaryOf(const QJsonObject &object)
{
    const auto textOf = [](const QJsonValue &value) { return value.toString(); };
    return {object["rows"_L1].toInteger(),
            mapped<QStringList>(object["files"_L1].toArray(), textOf)};
}

} // namespace

std::optional<RunLine> parseRunLine(const QByteArray &line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    if (object.isEmpty()) {
        return std::nullopt;
    }
    if (object.contains("progress"_L1)) {
        return progressOf(object["progress"_L1].toArray());
    }
    if (object.contains("summary"_L1)) {
        return summaryOf(object["summary"_L1].toObject());
    }
    // Texts keep the line feeds of their action at both ends, which a table does not need.
    return RunMessage{object["level"_L1].toInt(), object["action"_L1].toString(),
                      object["message"_L1].toString().trimmed()};
}

} // namespace corvanta::studio
