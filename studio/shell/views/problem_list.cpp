// The document finds the problems in the background; this list only shows them.
#include "studio/shell/views/problem_list.h"

#include "corvanta/edit/shown_text.h"
#include "studio/document/graph_document.h"
#include "studio/widgets/plain_table.h"

#include <QStyle>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

using Kind = CorvantaGraph::Problem::Kind;

constexpr int kActionRole = Qt::UserRole;
constexpr int kActionLetters = 32;

/// A run fails, a run does something else than expected, or neither.
QStyle::StandardPixmap iconOf(Kind kind)
{
    switch (kind) {
    case Kind::Invalid:
    case Kind::Missing:
        return QStyle::SP_MessageBoxCritical;
    case Kind::Mistake:
    case Kind::Idle:
        return QStyle::SP_MessageBoxWarning;
    case Kind::Hint:
        break;
    }
    return QStyle::SP_MessageBoxInformation;
}

} // namespace

ProblemList::ProblemList(QWidget *parent)
    : QTreeWidget(parent)
{
    setObjectName(u"problems"_s);
    setAccessibleName(tr("Problems"));
    setHeaderLabels({tr("Action"), tr("Problem")});
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    const auto choose = [this](const QTreeWidgetItem *item) {
        if (const QString id = item->data(0, kActionRole).toString(); !id.isEmpty()) {
            Q_EMIT actionChosen(id);
        }
    };
    // Twice: a single click is not an activation on every desktop, and Enter is not a click.
    connect(this, &QTreeWidget::itemClicked, this, choose);
    connect(this, &QTreeWidget::itemActivated, this, choose);
}

void ProblemList::setDocument(GraphDocument *document)
{
    if (m_document != nullptr) {
        m_document->disconnect(this);
    }
    m_document = document;
    if (document != nullptr) {
        connect(document, &GraphDocument::problemsChanged, this, &ProblemList::fill);
    }
    fill();
}

void ProblemList::fill()
{
    clear();
    const QVector<GraphProblem> problems =
        m_document != nullptr ? m_document->problems() : QVector<GraphProblem>();
    for (const GraphProblem &problem : problems) {
        // The tree owns its items.
        auto *const item = new QTreeWidgetItem(this, {problem.action, problem.text});
        item->setIcon(0, style()->standardIcon(iconOf(problem.kind)));
        item->setData(0, kActionRole, problem.action);
        item->setToolTip(0, plainToolTip(problem.action));
        item->setToolTip(1, plainToolTip(problem.text));
    }
    fitColumn(this, 0, kActionLetters);
    Q_EMIT countChanged(static_cast<int>(problems.size()));
}

} // namespace corvanta::studio
