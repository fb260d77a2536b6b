// Random operations on a document that its canvas shows. Whatever they are: undo to the beginning
// gives the file, redo the same end, and the canvas shows what the document has.
//
// CORVANTA_MONKEY_SECONDS sets the time, CORVANTA_MONKEY_SEED repeats a run.
#include "corvanta/action_parameters.h"
#include "studio/canvas/canvas_view.h"
#include "tests/support/graph_folder.h"

#include <QApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QTest>

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;
using namespace corvanta;
using namespace corvanta::studio;

namespace {

class Monkey
{
public:
    Monkey(GraphDocument &document, CanvasView &view, unsigned seed)
        : m_document(document)
        , m_view(view)
        , m_random(seed)
    {
    }

    void act()
    {
        static constexpr void (Monkey::*kActs[])() = {
            &Monkey::add,      &Monkey::add,    &Monkey::remove,   &Monkey::link,
            &Monkey::link,     &Monkey::link,   &Monkey::reroute,  &Monkey::insert,
            &Monkey::move,     &Monkey::rename, &Monkey::change,   &Monkey::change,
            &Monkey::note,     &Monkey::copy,   &Monkey::arrange,  &Monkey::undo,
            &Monkey::keyboard, &Monkey::mouse,  &Monkey::variable, &Monkey::sheet};
        (this->*kActs[upTo(std::size(kActs))])();
    }

private:
    size_t upTo(size_t count)
    {
        return std::uniform_int_distribution<size_t>(0, count - 1)(m_random);
    }
    int number(int count) { return static_cast<int>(upTo(static_cast<size_t>(count))); }
    QString anyId()
    {
        const QStringList ids = m_document.ids();
        return ids.isEmpty() ? QString() : ids[number(static_cast<int>(ids.size()))];
    }
    QStringList someIds() { return {anyId(), anyId(), anyId()}; }
    QPointF place() { return {number(2000) * 1.0, number(1000) * 1.0}; }
    PinRef anyPin() { return {anyId(), number(3)}; }
    LinkRef anyLink()
    {
        const auto links = m_document.links();
        return links.isEmpty() ? LinkRef() : links[number(static_cast<int>(links.size()))];
    }
    QString text()
    {
        static const QStringList texts{u"a"_s,    u"<&>'\""_s,     QString(),  u"é ü \U0001F600"_s,
                                       u"${x}"_s, u"line\nfeed"_s, u"%1 %2"_s, u" in "_s};
        return texts[number(static_cast<int>(texts.size()))];
    }
    QString anyType()
    {
        const QStringList types = test::allActions().typeNames();
        return types[number(static_cast<int>(types.size()))];
    }

    void add()
    {
        // Small graphs find as many faults as large ones, and are faster.
        constexpr int kMaxActions = 30;
        if (m_document.ids().size() < kMaxActions) {
            m_document.addAction(anyType(), place());
        }
    }
    void remove()
    {
        if (number(3) == 0) {
            m_document.removeAndJoin({anyId()});
        } else {
            m_document.remove({anyId()}, {anyLink()});
        }
    }
    void link() { m_document.addLink(anyPin(), anyPin()); }
    void reroute() { m_document.reroute(anyLink(), {anyPin(), anyPin()}); }
    void insert()
    {
        number(2) == 0 ? m_document.insertIntoLink(anyId(), anyLink())
                       : !m_document.addActionIntoLink(anyType(), anyLink()).isEmpty();
    }
    void move() { m_document.move({{anyId(), place()}, {anyId(), place()}}, -number(3)); }
    void rename() { m_document.rename(anyId(), text()); }
    void note() { m_document.setComment(anyId(), text(), -number(2)); }
    /// Notes of the canvas; dialogs would wait for an answer.
    void sheet()
    {
        const QVector<Note> notes = m_document.notes();
        const int key = notes.isEmpty() ? -1 : notes[number(static_cast<int>(notes.size()))].key;
        switch (number(4)) {
        case 0:
            return m_document.moveNotes({{key, place()}}, -number(2));
        case 1:
            return m_document.setNoteText(key, text());
        case 2:
            return m_document.remove({}, {}, {key});
        default:
            notes.size() < 5 ? m_document.addNote(place(), u"n"_s + text()) : 0;
        }
    }
    void variable() { m_document.setVariable(u"x"_s, number(2) == 0 ? QString() : text()); }
    void arrange()
    {
        if (number(4) == 0) {
            m_document.layout(number(2) == 0 ? QStringList() : someIds());
        } else {
            m_document.align(someIds(), static_cast<GraphDocument::Alignment>(number(8)));
        }
    }
    void copy()
    {
        if (m_document.ids().size() < 20) {
            number(2) == 0 ? m_document.duplicate(someIds())
                           : m_document.paste(m_document.copied(someIds()), place());
        }
    }
    /// As a panel does.
    void change()
    {
        ActionItem *const item = m_document.action(anyId());
        auto *const parameters = dynamic_cast<ActionParameters *>(item);
        if (parameters == nullptr || parameters->parameters().isEmpty()) {
            return;
        }
        const QVector<ParameterInfo> infos = parameters->parameters();
        const int index = number(static_cast<int>(infos.size()));
        const QString value = number(2) == 0 ? text() : QString::number(number(3));
        if (infos[index].type != ParameterInfo::Type::Structure &&
            parameters->setParameterValue(index, value)) {
            m_document.recordEdit(item, {infos[index].name, value, number(3)});
        }
    }
    void undo()
    {
        for (int i = number(6); i > 0; --i) {
            number(3) == 0 ? m_document.undoStack()->redo() : m_document.undoStack()->undo();
        }
    }
    void keyboard()
    {
        static constexpr Qt::Key kKeys[] = {
            Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_L,      Qt::Key_Down,   Qt::Key_Return,
            Qt::Key_K,   Qt::Key_Right,   Qt::Key_Escape, Qt::Key_Delete, Qt::Key_N};
        const auto modifier = number(4) == 0 ? Qt::AltModifier : Qt::NoModifier;
        const Qt::Key key = kKeys[upTo(std::size(kKeys))];
        // It would open a dialog for the text of a note.
        if (key != Qt::Key_Return || m_view.graphScene().selectedNotes().isEmpty()) {
            QTest::keyClick(&m_view, key, modifier);
        }
    }
    void mouse()
    {
        const NodeItem *const from = m_view.graphScene().node(anyId());
        const NodeItem *const to = m_view.graphScene().node(anyId());
        if (from == nullptr || to == nullptr) {
            return;
        }
        const auto placeOf = [&](const NodeItem &node) {
            const int where = number(3);
            return where == 0   ? node.outputPosition(0)
                   : where == 1 ? node.inputPosition(0)
                                : node.sceneBoundingRect().center();
        };
        send(QEvent::MouseButtonPress, placeOf(*from));
        send(QEvent::MouseMove, placeOf(*to));
        if (number(10) == 0) {
            remove(); // a part of what is dragged may vanish
        } else {
            send(QEvent::MouseButtonRelease, placeOf(*to));
        }
        send(QEvent::MouseButtonRelease, place());
    }
    void send(QEvent::Type type, QPointF place)
    {
        const QPoint at = m_view.mapFromScene(place);
        const auto buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, m_view.viewport()->mapToGlobal(at),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, buttons,
                          Qt::NoModifier);
        QApplication::sendEvent(m_view.viewport(), &event);
        if (QWidget *const popup = QApplication::activePopupWidget()) {
            popup->hide();
        }
    }

    GraphDocument &m_document;
    CanvasView &m_view;
    std::mt19937 m_random;
};

void expectShown(const GraphDocument &document, const CanvasView &view)
{
    const GraphScene &scene = view.graphScene();
    ASSERT_EQ(scene.orderedNodes().size(), document.ids().size());
    ASSERT_EQ(scene.links().size(), document.links().size());
    for (const QString &id : document.ids()) {
        const NodeItem *const node = scene.node(id);
        ASSERT_NE(node, nullptr);
        ASSERT_EQ(node->pos(), document.position(id));
        ASSERT_EQ(node->inputs(), document.inputCount(id));
    }
    ASSERT_EQ(scene.notes().size(), document.notes().size());
    for (qsizetype i = 0; i < scene.notes().size(); ++i) {
        ASSERT_EQ(scene.notes()[i]->pos(), document.notes()[i].position);
        ASSERT_EQ(scene.notes()[i]->text(), document.notes()[i].text);
    }
    for (const LinkItem *const link : scene.links()) {
        ASSERT_TRUE(document.links().contains(link->link()));
        ASSERT_EQ(link->from()->id(), link->link().from.action);
    }
}

/// What the objects of the actions save is in the text.
void expectSameParameters(const GraphDocument &document)
{
    const auto graph = CorvantaGraph::parse(document.toXml(), document.fileName());
    ASSERT_TRUE(graph) << document.toXml().toStdString();
    ASSERT_EQ(graph->actions.size(), document.graph().actions.size());
    for (const CorvantaGraph::Action &action : graph->actions) {
        GlobalParameters global;
        graph->applyTo(&global, {}, {});
        const auto copy = document.registry().create(action.parameters, &global);
        const auto *const saved = dynamic_cast<const ActionParameters *>(copy.get());
        const auto *const shown =
            dynamic_cast<const ActionParameters *>(document.action(action.id));
        const qsizetype count = saved == nullptr ? 0 : saved->parameters().size();
        for (int i = 0; i < count; ++i) {
            ASSERT_EQ(saved->parameterValue(i), shown->parameterValue(i))
                << action.id.toStdString() << ' ' << saved->parameters()[i].name.toStdString();
        }
    }
}

TEST(Monkey, UndoLeadsBackToTheFileAndRedoToTheEnd)
{
    const int seconds = qEnvironmentVariableIntValue("CORVANTA_MONKEY_SECONDS");
    const qint64 limitMs = (seconds > 0 ? seconds : 60) * 1000LL;
    unsigned seed =
        qEnvironmentVariableIsSet("CORVANTA_MONKEY_SEED")
            ? static_cast<unsigned>(qEnvironmentVariableIntValue("CORVANTA_MONKEY_SEED"))
            : 1;
    QStringList files;
    QDirIterator found(QStringLiteral(CORVANTA_SOURCE_DIR) + u"/tests/graphs"_s, {u"*.graph"_s},
                       QDir::Files, QDirIterator::Subdirectories);
    while (found.hasNext()) {
        files << found.next();
    }
    files.sort();
    QElapsedTimer clock;
    clock.start();
    qint64 acts = 0;
    for (; clock.elapsed() < limitMs; ++seed) {
        SCOPED_TRACE(seed);
        auto opened = GraphDocument::open(files[seed * 7 % files.size()], test::allActions());
        if (!opened) {
            continue;
        }
        const auto document = std::move(*opened);
        CanvasView view(*document);
        view.resize(800, 600);
        const QByteArray before = document->toXml();
        Monkey monkey(*document, view, seed);
        for (int i = 0; i < 200; ++i, ++acts) {
            monkey.act();
        }
        view.graphScene().clearFocus();
        QTest::keyClick(&view, Qt::Key_Escape);
        expectSameParameters(*document);
        expectShown(*document, view);
        const QByteArray end = document->toXml();
        const int steps = document->undoStack()->index();
        document->undoStack()->setIndex(0);
        ASSERT_EQ(document->toXml(), before);
        expectShown(*document, view);
        document->undoStack()->setIndex(steps);
        ASSERT_EQ(document->toXml(), end);
        expectShown(*document, view);
        if (testing::Test::HasFailure()) {
            return;
        }
    }
    std::printf("%lld operations, seeds up to %u\n", acts, seed - 1);
}

} // namespace
