#include "panels/structures/read_levels_editor.h"

#include "panels/basic_editors.h"
#include "panels/structures/element_table.h"
#include "panels/suggestion_field.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr auto kContainer = "initialPath"_L1;
constexpr auto kRepeated = "subtagName"_L1;
constexpr auto kColumns = "e"_L1;

} // namespace

ReadLevelsEditor::ReadLevelsEditor(const FieldContext &context, FindLevels findLevels)
    : StructureEditor(context, Lists::AsFields,
                      {tr("Add a level inside the current one"),
                       {},
                       tr("No levels yet: fill them from the file, or add one")})
    , m_findLevels(findLevels)
{
}

/// The sample depends on the file and on how it is read, but not on the levels.
void ReadLevelsEditor::actionChanged()
{
    QStringList values;
    const QVector<ParameterInfo> infos = context().parameters->parameters();
    for (int i = 0; i < infos.size(); ++i) {
        if (infos[i].name != context().info.name) {
            values << context().parameters->parameterValue(i);
        }
    }
    if (values == m_sampleKey) {
        return;
    }
    m_sampleKey = values;
    ask<SampledLevels>(m_worker, *context().action, m_findLevels,
                       [this](const SampledLevels &found) {
                           m_sample = found;
                           refreshContext();
                       });
}

FieldEditor *ReadLevelsEditor::makeMember(const FieldContext &context)
{
    const QString name = context.info.name;
    if (name == kContainer || name == kRepeated) {
        auto *const field = new SuggestionField(context, [this, name] { return pathsFor(name); });
        field->setPlaceholder(name == kContainer ? tr("The document itself") : tr("Every element"));
        return field;
    }
    if (name == kColumns) {
        return makeColumns(context);
    }
    if (context.info.type == ParameterInfo::Type::Strings) {
        return new TextEditor(context); // a list of paths, which is usually empty: one per line
    }
    return makeEditor(context);
}

/// Only the paths are suggested: the user chooses the names.
FieldEditor *ReadLevelsEditor::makeColumns(const FieldContext &context)
{
    auto *const table = new ElementTable(context, {tr("Add a column"), tr("Remove the column")});
    table->setSuggestions([this](const ParameterInfo &member) {
        return member.name == "path"_L1 ? pathsFor(member.name) : QStringList();
    });
    return table;
}

/// Each level is inside the one before it, so its paths depend on all of them.
LevelPlaces ReadLevelsEditor::placesToCurrent() const
{
    LevelPlaces places;
    const ParameterInfo &list = context().info;
    const int current = currentIndex();
    for (const Element &level : elements()) {
        if (static_cast<int>(places.size()) <= current) {
            places.push_back({memberValue(level, list, kContainer).trimmed(),
                              memberValue(level, list, kRepeated).trimmed(),
                              {},
                              {}});
        }
    }
    return places;
}

/// A container is searched in the levels before its own.
QStringList ReadLevelsEditor::pathsFor(const QString &member) const
{
    LevelPlaces places = placesToCurrent();
    if (places.empty()) {
        return {};
    }
    if (member == kContainer) {
        places.pop_back();
        return containersAfter(m_sample, places);
    }
    return member == kRepeated ? repeatedIn(m_sample, places) : valuesIn(m_sample, places);
}

/// Indented, because each level is inside the one before it.
QString ReadLevelsEditor::summary(const Element &level, const ParameterInfo &list, int index) const
{
    QStringList parts{memberValue(level, list, kContainer), memberValue(level, list, kRepeated)};
    parts.removeAll(QString());
    const QString place = parts.isEmpty() ? tr("(document)") : parts.join(u" \u203a "_s);
    const auto isColumn = [](const Element &child) { return child.name == kColumns; };
    const auto columns = std::count_if(level.children.begin(), level.children.end(), isColumn);
    const QString indent =
        index == 0 ? QString() : QString(qsizetype(4) * index, u' ') + u"\u2514 "_s;
    return indent + tr("%1 (columns: %2)").arg(place, QString::number(columns));
}

} // namespace corvanta
