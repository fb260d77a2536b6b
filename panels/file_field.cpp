#include "panels/file_field.h"

#include "base/mapped.h"
#include "corvanta/action_item.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/file_dialogs.h"
#include "corvanta/files.h"
#include "corvanta/main_ui.h"
#include "panels/colors.h"
#include "panels/glyphs.h"

#include <QAction>
#include <QDesktopServices>
#include <QDropEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QToolButton>
#include <QToolTip>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr int kNameCharacters = 18; // at least visible, also with long labels and a large font

/// The filter of a file dialog. Extensions come without a dot.
QString fileFilter(const QStringList &extensions)
{
    const auto patternOf = [](const QString &extension) { return u"*."_s + extension.toLower(); };
    const auto patterns = mapped<QStringList>(extensions, patternOf);
    const QString all = FileField::tr("All files (*)");
    return patterns.isEmpty() ? all : FileField::tr("Files (%1);;%2").arg(patterns.join(u' '), all);
}

/// The first local file of dropped data; empty if there is none.
QString droppedFile(const QMimeData &data)
{
    const QList<QUrl> urls = data.urls();
    const auto found = std::ranges::find_if(urls, &QUrl::isLocalFile);
    return found == urls.end() ? QString() : found->toLocalFile();
}

/// The variables that a name may contain: those of the graph and the built-in ones.
QStringList variableNames()
{
    const CorvantaGraph *const graph = MainUI::editedGraph();
    const QStringList own = graph == nullptr ? QStringList() : graph->variables.keys();
    return own + QStringList{u"graphDir"_s, u"outDir"_s, u"workingDir"_s};
}

/// A document, or the folder of any other file: the system would run a program, and who has made
/// the graph chose the name and the content.
QUrl urlToOpen(const QFileInfo &file)
{
    static const QStringList documents{u"csv"_s,  u"docm"_s,     u"docx"_s,    u"gz"_s,
                                       u"json"_s, u"jsonl"_s,    u"parquet"_s, u"pptm"_s,
                                       u"pptx"_s, u"sas7bdat"_s, u"tsv"_s,     u"txt"_s,
                                       u"xlsm"_s, u"xlsx"_s,     u"xml"_s,     u"xpt"_s};
    const bool isDocument = documents.contains(file.suffix(), Qt::CaseInsensitive);
    return QUrl::fromLocalFile(isDocument ? file.absoluteFilePath() : file.absolutePath());
}

} // namespace

FileField::FileField(const FieldContext &context)
    : FieldEditor(context)
    , m_line(new QLineEdit(this))
    , m_mark(m_line->addAction(QIcon(), QLineEdit::TrailingPosition))
{
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_line);
    row->addWidget(makeMenuButton());
    if (!isInput()) {
        m_open = makeButton(Glyph::Open, tr("Open the written file"), [this] { open(); });
        m_open->setObjectName(u"open"_s);
        row->addWidget(m_open);
    }
    m_line->installEventFilter(this); // for dropped files
    m_line->setMinimumWidth(fontMetrics().averageCharWidth() * kNameCharacters);
    setMainControl(m_line);
    m_mark->setVisible(false);
    connect(m_line, &QLineEdit::textEdited, this,
            [this](const QString &text) { report(text, Edit::Typing); });
    connect(m_line, &QLineEdit::textChanged, this, [this] {
        m_state = State::Unknown;
        lookUp();
    });
}

/// The button opens the dialog; its arrow opens the menu.
QWidget *FileField::makeMenuButton()
{
    auto *const button = makeButton(Glyph::Folder, tr("Choose a file for %1").arg(context().label),
                                    [this] { browse(); });
    auto *const menu = new QMenu(button);
    button->setAutoRaise(false);
    button->setPopupMode(QToolButton::MenuButtonPopup);
    button->setMenu(menu);
    button->setObjectName(u"browse"_s);
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { fillMenu(menu); });
    return button;
}

void FileField::fillMenu(QMenu *menu)
{
    menu->clear(); // the variables may have changed
    connect(menu->addAction(tr("Choose a file\u2026")), &QAction::triggered, this,
            [this] { browse(); });
    if (isInput()) {
        connect(menu->addAction(tr("Choose a member of the archive\u2026")), &QAction::triggered,
                this, [this] { chooseMember(); });
    }
    QMenu *const variables = menu->addMenu(tr("Insert a variable"));
    for (const QString &name : variableNames()) {
        connect(variables->addAction(name), &QAction::triggered, this,
                [this, name] { insertVariable(name); });
    }
}

void FileField::browse()
{
    // A name in a graph may contain variables and may be relative; dialogs need a full one.
    const QString filter = fileFilter(context().action->getFileTypes());
    const QString start = context().action->expandFile(m_line->text());
    take(isInput() ? tGetOpenFileName(this, context().label, start, filter)
                   : tGetSaveFileName(this, context().label, start, filter));
}

void FileField::chooseMember()
{
    take(browseArchive(this, context().action->expandFile(m_line->text())));
}

void FileField::insertVariable(const QString &name)
{
    m_line->insert(u"${%1}"_s.arg(name));
    report(m_line->text());
}

void FileField::take(const QString &name)
{
    if (name.isEmpty()) {
        return;
    }
    // Relative to the graph, so that its folder can be moved.
    const GlobalParameters *const global = context().action->globalParameters();
    m_line->setText(global == nullptr ? name : global->contractFile(name));
    report(m_line->text());
}

/// Looked up again, because the last run may have written it.
void FileField::open()
{
    lookUp([this] {
        if (m_state == State::Exists) {
            QDesktopServices::openUrl(urlToOpen(QFileInfo(fullName())));
        } else {
            QToolTip::showText(m_open->mapToGlobal(QPoint(0, m_open->height())),
                               tr("The file does not exist yet"), m_open);
        }
    });
}

void FileField::setValue(const QString &value)
{
    // Setting an equal text would move the cursor while the user types.
    if (m_line->text() != value) {
        m_line->setText(value);
    }
    lookUp(); // the file may have been created since
}

void FileField::showProblem(const ParameterProblem &problem)
{
    FieldEditor::showProblem(problem);
    m_hasProblem = !problem.text.isEmpty();
    showMark();
}

QString FileField::fullName() const
{
    // An unknown variable or an included template (">name") is not a file that can be looked up.
    const QString text = m_line->text();
    const QString name = isInput() ? context().action->expandFile(text)
                                   : context().action->expandOutputFile(text, QString());
    const bool isKnown = !text.isEmpty() && !name.contains("${"_L1) && !text.startsWith(u'>');
    return isKnown ? name : QString();
}

/// On a worker thread, because a file server may take seconds to answer.
void FileField::lookUp(std::function<void()> shown)
{
    const QString name = fullName();
    if (m_open != nullptr) {
        m_open->setEnabled(!name.isNull());
    }
    if (name.isNull()) {
        m_worker.stop();
        setState(State::Unknown, 0);
        return;
    }
    m_worker.start(
        [this, name, shown = std::move(shown),
         isInput = isInput()](const std::stop_token &) -> Worker::Show {
            QStringList files{name};
            if (isInput) {
                listFiles(name, &files);
            }
            const QString first = files.value(0);
            const bool exists = QFileInfo::exists(isInput ? fileOfInput(first) : first);
            return [this, shown, exists, count = static_cast<int>(files.size())] {
                setState(exists ? State::Exists : State::Missing, count);
                if (shown) {
                    shown();
                }
            };
        },
        [this](const QString &) { setState(State::Unknown, 0); });
}

void FileField::setState(State state, int files)
{
    m_state = state;
    m_files = files;
    showMark();
}

void FileField::showMark()
{
    m_mark->setVisible(m_state != State::Unknown);
    const QPalette &colors = palette();
    // The panel has checked more: see showProblem().
    if (m_state == State::Exists && !(isInput() && m_hasProblem)) {
        m_mark->setIcon(glyphIcon(Glyph::Check, colors.color(QPalette::Text)));
        m_mark->setToolTip(m_files > 1 ? tr("Files with such a name: %1").arg(m_files)
                                       : tr("The file exists"));
    } else {
        m_mark->setIcon(isInput() ? glyphIcon(Glyph::Cross, errorColor(colors))
                                  : glyphIcon(Glyph::New, colors.color(QPalette::Text)));
        m_mark->setToolTip(isInput() ? tr("The file cannot be read")
                                     : tr("The file does not exist yet"));
    }
}

bool FileField::eventFilter(QObject *watched, QEvent *event)
{
    // Without it the line would insert the URL as a text. QDragEnterEvent is a QDropEvent.
    if (event->type() == QEvent::DragEnter || event->type() == QEvent::Drop) {
        auto *const drop = static_cast<QDropEvent *>(event);
        const QString file = droppedFile(*drop->mimeData());
        if (!file.isEmpty()) {
            drop->acceptProposedAction();
            if (event->type() == QEvent::Drop) {
                take(file);
            }
            return true;
        }
    }
    return FieldEditor::eventFilter(watched, event);
}

/// The marks have colours of the palette.
void FileField::changeEvent(QEvent *event)
{
    FieldEditor::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        showMark();
    }
}

} // namespace corvanta
