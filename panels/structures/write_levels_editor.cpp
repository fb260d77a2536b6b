#include "panels/structures/write_levels_editor.h"

#include "base/mapped.h"
#include "corvanta/action_item.h"
#include "panels/basic_editors.h"
#include "panels/column_picker.h"
#include "panels/note_label.h"
#include "panels/suggestion_field.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr int kVisibleTextLines = 6; // longer texts scroll
constexpr qsizetype kMaxRows = 5;    // of the input
constexpr int kSampleRows = 2;
constexpr auto kLevel = "Level"_L1;
constexpr auto kLevelName = "name"_L1;
constexpr auto kPartition = "partitionCol"_L1;
constexpr auto kCommas = "commaSeparated"_L1;
constexpr auto kItemType = "type"_L1;
constexpr auto kText = "text"_L1;
constexpr auto kCalled = "calledLevel"_L1;
constexpr auto kLevelColumns = "columns"_L1;

/// Levels and items are elements of the same tree, and each list has its own members.
bool isLevel(const ParameterInfo &list)
{
    return list.itemElement == kLevel;
}

/// Whether the type of an item uses the member.
bool uses(const Element &item, const ParameterInfo &list, const QString &member)
{
    return isUsed(item, list, *memberOf(list, member));
}

/// What an item writes, apart from its type.
QString detailOf(const Element &item, const ParameterInfo &list)
{
    for (const auto member : {kText, kCalled, kLevelColumns}) {
        if (uses(item, list, member)) {
            return memberValue(item, list, member).replace(u'\n', u", "_s);
        }
    }
    return {};
}

/// A text that shows which column and which row it is from.
QString sampleValue(const QString &column, MetaInfo::MetaTypeColumn type, int row)
{
    switch (type) {
    case MetaInfo::Key:
        return QString::number(row);
    case MetaInfo::Float:
        return QString::number(row + 0.5);
    case MetaInfo::Unknown:
        break;
    }
    return u"%1 %2"_s.arg(column, QString::number(row));
}

/// Values for the columns that the host knows, or for two columns if it knows none.
PreviewRows sampleRows(TableSchema columns)
{
    if (columns.names.isEmpty()) {
        columns.names = {u"a"_s, u"b"_s};
    }
    columns.types.resize(columns.names.size()); // of unknown type
    PreviewRows sample{std::move(columns), {}, {}};
    for (int row = 1; row <= kSampleRows; ++row) {
        QStringList values;
        for (qsizetype i = 0; i < sample.columns.names.size(); ++i) {
            values << sampleValue(sample.columns.names[i], sample.columns.types[i].type(), row);
        }
        sample.rows.append(values);
    }
    return sample;
}

} // namespace

WriteLevelsEditor::WriteLevelsEditor(const FieldContext &context, const LevelWriting &writing)
    : StructureEditor(context, Lists::InTree,
                      {tr("Add a level or an item after the current one"),
                       tr("Add an item to the current level"),
                       tr("No levels: each row is written as one element")})
    , m_writing(writing)
    , m_text(new QPlainTextEdit(this))
    , m_source(new NoteLabel(this))
    , m_problem(new NoteLabel(this))
{
    addPreview();
}

void WriteLevelsEditor::addPreview()
{
    auto *const title = new QLabel(tr("Preview of the file:"));
    title->setBuddy(m_text);
    m_text->setReadOnly(true);
    m_text->setTabChangesFocus(true);
    m_text->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    m_text->setFont(fixedFont(font()));
    const int margins =
        2 * (m_text->frameWidth() + static_cast<int>(m_text->document()->documentMargin()));
    m_text->setFixedHeight(QFontMetrics(m_text->font()).lineSpacing() * kVisibleTextLines +
                           margins);
    nameControl(m_text, tr("Preview of the file"));
    column()->addWidget(title);
    column()->addWidget(m_text);
    column()->addWidget(m_problem);
    column()->addWidget(m_source);
}

// ---- The fields

/// Levels and columns are chosen from those that exist.
FieldEditor *WriteLevelsEditor::makeMember(const FieldContext &context)
{
    const QString name = context.info.name;
    if (name == kCalled) {
        return new SuggestionField(context, [this] { return levelNames(); });
    }
    if (name == kText) {
        return new TextEditor(context); // may have several lines
    }
    if (name == kPartition) {
        return new ColumnField(context);
    }
    return name == kLevelColumns ? new ColumnPicker(context) : makeEditor(context);
}

QStringList WriteLevelsEditor::levelNames() const
{
    return mapped<QStringList>(elements(), [&](const Element &level) {
        return memberValue(level, context().info, kLevelName);
    });
}

/// A level is known by its name, an item by its type and by what it writes.
QString WriteLevelsEditor::summary(const Element &element, const ParameterInfo &list,
                                   int index) const
{
    if (isLevel(list)) {
        const QString name = memberValue(element, list, kLevelName);
        const QString number = QString::number(index + 1);
        return name.isEmpty() ? tr("Level %1").arg(number) : tr("Level %1: %2").arg(number, name);
    }
    const ParameterInfo &type = *memberOf(list, kItemType);
    const QString number = memberValue(element, type);
    const QString what = type.choices.value(number.toInt());
    const QString text = what.isEmpty() ? tr("Type %1").arg(number) : what;
    const QString detail = detailOf(element, list);
    return detail.isEmpty() ? text : captionOf(text) + u' ' + detail;
}

QString WriteLevelsEditor::remark(const Element &element, const ParameterInfo &list) const
{
    if (isLevel(list)) {
        return {};
    }
    const QString called = memberValue(element, list, kCalled);
    if (uses(element, list, kCalled) && !levelNames().contains(called)) {
        return tr("There is no level '%1'").arg(called);
    }
    const bool lacksColumns =
        uses(element, list, kLevelColumns) && memberValue(element, list, kLevelColumns).isEmpty();
    return lacksColumns ? tr("No column is chosen") : QString();
}

Element WriteLevelsEditor::makeElement(const ParameterInfo &list) const
{
    return isLevel(list) ? makeLevel(list) : newElement(list);
}

/// The first level has the items of a complete document. Further levels begin without items.
Element WriteLevelsEditor::makeLevel(const ParameterInfo &list) const
{
    const compose::WriteLevel pattern = m_writing.defaultLevels(true, {}).front();
    Element level = newElement(list);
    setMember(&level, *memberOf(list, kCommas), pattern.commaSeparated ? u"1"_s : u"0"_s);
    const auto number = elements().size() + 1;
    if (number > 1) {
        setMember(&level, *memberOf(list, kLevelName), u"level%1"_s.arg(number));
        return level;
    }
    const ParameterInfo &items = *listIn(list);
    for (const compose::WriteItem &item : pattern.items) {
        Element element = newElement(items);
        setMember(&element, *memberOf(items, kItemType), QString::number(item.type));
        setMember(&element, *memberOf(items, kText), item.text);
        level.children.push_back(std::move(element));
    }
    return level;
}

/// The top level has no partitions.
bool WriteLevelsEditor::showsMember(const Element &element, const ParameterInfo &list,
                                    const ParameterInfo &member) const
{
    return StructureEditor::showsMember(element, list, member) &&
           (member.name != kPartition || currentIndex() > 0);
}

// ---- The preview

void WriteLevelsEditor::refreshContext()
{
    StructureEditor::refreshContext();
    updateRows();
}

void WriteLevelsEditor::actionChanged()
{
    updatePreview();
}

/// The input is read again only when an action before this one has changed.
void WriteLevelsEditor::updateRows()
{
    const PreviewRequest request = requestOf(*context().action);
    // The rows do not depend on the action itself.
    CorvantaGraph sources = request.graph;
    sources.actions.removeIf(
        [&](const CorvantaGraph::Action &action) { return action.id == request.action; });
    const QByteArray graph = sources.actions.isEmpty() ? QByteArray() : sources.toXml();
    if (graph == m_rowsGraph) {
        return;
    }
    m_rowsGraph = graph;
    m_rows = {};
    m_worker.start(
        [this, request](const std::stop_token &stop) -> Worker::Show {
            PreviewRows rows = previewRows(request, EngineRunner::PinIn, stop);
            rows.rows.resize(qMin(kMaxRows, rows.rows.size()));
            return [this, rows] {
                m_rows = rows;
                updatePreview();
            };
        },
        [](const QString &) {}); // sample values are shown
}

/// Sample values show the form of the file where the rows of the input are not known.
void WriteLevelsEditor::updatePreview()
{
    const bool isSample = m_rows.rows.isEmpty();
    const PreviewRows rows = isSample ? sampleRows(inputColumns()) : m_rows;
    // A copy, because composing changes the state of the action.
    GlobalParameters *const global = context().action->globalParameters();
    const std::unique_ptr<ActionItem> copy(context().action->clone(global));
    const LevelWriting::Text composed =
        copy == nullptr ? LevelWriting::Text() : m_writing.compose(*copy, rows);
    if (m_text->toPlainText() != composed.text) { // keeps the scroll position
        m_text->setPlainText(composed.text);
    }
    m_problem->setNote(NoteLabel::Kind::Error, composed.problem);
    m_source->setNote(NoteLabel::Kind::Remark,
                      isSample ? tr("With sample values in place of the rows of the input")
                               : tr("With the first rows of the input"));
}

} // namespace corvanta
