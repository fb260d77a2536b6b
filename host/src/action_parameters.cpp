// Defaults of the parameter interface, for actions that implement only a part of it, and lookups in
// its lists.
#include "corvanta/action_parameters.h"

#include <algorithm>

using namespace Qt::StringLiterals;

KnownNames knownNames(const QVector<ParameterInfo> &infos)
{
    KnownNames names;
    for (const ParameterInfo &info : infos) {
        if (info.place == ParameterInfo::Place::Attribute) {
            names.attributes << info.name;
        } else if (info.place == ParameterInfo::Place::Element) {
            names.elements << info.name;
        } else if (info.type == ParameterInfo::Type::Strings) {
            names.elements << u"s"_s; // a list directly in the element
        }
        // In the inline form the members of the item are directly in the parent.
        if (info.hasInlineForm) {
            const KnownNames inner = knownNames(info.members);
            names.attributes << inner.attributes;
            names.elements << inner.elements;
        }
    }
    return names;
}

ActionParameters::~ActionParameters() = default;

namespace {

/// Index of the first parameter with this value of a member; -1: none. Linear: tables are short,
/// and callers look parameters up once per command or panel.
template <class T>
int indexOf(const QVector<ParameterInfo> &all, T ParameterInfo::*member, const T &value)
{
    const auto found = std::find_if(
        all.begin(), all.end(), [&](const ParameterInfo &info) { return info.*member == value; });
    return found == all.end() ? -1 : static_cast<int>(found - all.begin());
}

} // namespace

int ActionParameters::indexOfParameter(const QString &name) const
{
    return indexOf(parameters(), &ParameterInfo::name, name);
}

int ActionParameters::indexOfParameter(ParameterInfo::Role role) const
{
    return indexOf(parameters(), &ParameterInfo::role, role);
}

namespace {

bool holds(const ParameterInfo::Condition &condition, const ActionParameters &parameters)
{
    const int index = parameters.indexOfParameter(condition.parameter);
    return condition.values.contains(parameters.parameterValue(index)) != condition.isExcluded ||
           std::ranges::any_of(condition.alternatives,
                               [&](const auto &other) { return holds(other, parameters); });
}

} // namespace

const ParameterInfo::Condition *ActionParameters::failedCondition(const ParameterInfo &info) const
{
    const auto failed = std::find_if(
        info.conditions.begin(), info.conditions.end(),
        [this](const ParameterInfo::Condition &condition) { return !holds(condition, *this); });
    return failed == info.conditions.end() ? nullptr : &*failed;
}

QVector<InputTable> ActionParameters::inputTables()
{
    return {};
}

QVector<InputTable> ActionParameters::relatedTables()
{
    return {};
}

bool ActionParameters::fillFromRelated(int, const QVector<bool> &)
{
    return false;
}

bool ActionParameters::fillFromInput(int)
{
    return true;
}

QVector<TargetUse> ActionParameters::targets() const
{
    return {};
}

QStringList ActionParameters::inputs() const
{
    return {};
}

const QStringList &kindNames()
{
    static const QStringList names{u"text"_s, u"integer"_s,  u"decimal"_s, u"boolean"_s,
                                   u"date"_s, u"datetime"_s, u"time"_s};
    return names;
}

QString kindName(ValueKind kind)
{
    return kindNames()[static_cast<qsizetype>(kind)];
}

QStringList columnsOfKind(const QVector<ColumnKind> &columns, ValueKind kind)
{
    QStringList names;
    for (const ColumnKind &column : columns) {
        if (column.kind == kind) {
            names << column.column;
        }
    }
    return names;
}

std::optional<QVector<ColumnKind>> ActionParameters::columnKinds(KindExtent /*extent*/)
{
    return QVector<ColumnKind>();
}

bool ActionParameters::readColumnsAs(const QVector<ColumnKind> & /*columns*/)
{
    return false;
}

QVector<ColumnNotes> ActionParameters::columnNotes()
{
    return {};
}

bool ActionParameters::needsColumnKinds() const
{
    return false;
}

void ActionParameters::setColumnKinds(const QVector<ColumnKind> & /*columns*/) {}

bool ActionParameters::needsColumnLabels() const
{
    return false;
}

void ActionParameters::setColumnLabels(const QVector<ColumnNotes> & /*notes*/) {}

std::span<const FileFormat> ActionParameters::fileFormats() const
{
    return {};
}

QVector<ParameterProblem> ActionParameters::problems() const
{
    return {};
}

QStringList ActionParameters::includedTemplates() const
{
    return {};
}

bool ActionParameters::templateMarks(const QString &, QVector<TemplateMark> *)
{
    return true;
}

QString ActionParameters::typeName(ParameterInfo::Type type)
{
    switch (type) {
    case ParameterInfo::Type::Text:
        return u"text"_s;
    case ParameterInfo::Type::Integer:
        return u"integer"_s;
    case ParameterInfo::Type::Real:
        return u"real"_s;
    case ParameterInfo::Type::Flag:
        return u"flag"_s;
    case ParameterInfo::Type::Strings:
        return u"strings"_s;
    case ParameterInfo::Type::Structure:
        break;
    }
    return u"structure"_s;
}
