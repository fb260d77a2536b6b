// A tab owns its document. The panels leave a document, by currentTabChanged(), before it is
// destroyed.
#include "studio/shell/workspace.h"

#include "studio/run/run_controller.h"
#include "studio/shell/document_tab.h"
#include "studio/shell/preferences/settings.h"
#include "studio/shell/views/message_bar.h"
#include "studio/shell/views/start_page.h"

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QStandardPaths>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// Of file dialogs. Graphs may have any extension, so all files can be chosen too.
QString graphFilter()
{
    return Workspace::tr("Graphs (*.graph);;All files (*)");
}

/// Copy the files of a folder and its folders. Existing files are kept.
void copyFolder(const QString &source, const QString &target)
{
    QDirIterator files(source, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString file = files.next();
        const QString name = target + u'/' + QDir(source).relativeFilePath(file);
        QDir().mkpath(QFileInfo(name).path());
        QFile::copy(file, name);
        // A copy of a read-only file is read-only too, and this one is for changing.
        QFile::setPermissions(name, QFile::permissions(name) | QFile::WriteOwner);
    }
}

} // namespace

Workspace::Workspace(const ActionRegistry &registry, Settings &settings, QWidget *parent)
    : QTabWidget(parent)
    , m_registry(registry)
    , m_settings(settings)
    , m_start(new StartPage(settings, this))
{
    setObjectName(u"workspace"_s);
    setTabsClosable(true);
    // The order of the tabs is that of the next session.
    setMovable(true);
    setDocumentMode(true);
    connect(this, &QTabWidget::currentChanged, this, &Workspace::currentTabChanged);
    connect(this, &QTabWidget::tabCloseRequested, this, &Workspace::close);
    connect(m_start, &StartPage::newRequested, this, &Workspace::newDocument);
    connect(m_start, &StartPage::openRequested, this, &Workspace::openWithDialog);
    connect(m_start, &StartPage::fileChosen, this, &Workspace::open);
    connect(m_start, &StartPage::exampleChosen, this, &Workspace::openExample);
    showStartPage();
}

Workspace::~Workspace()
{
    // The owner of the panels is destroyed as well; it must not be called.
    blockSignals(true);
}

DocumentTab *Workspace::current() const
{
    return qobject_cast<DocumentTab *>(currentWidget());
}

QVector<DocumentTab *> Workspace::tabs() const
{
    QVector<DocumentTab *> found;
    found.reserve(count());
    for (int i = 0; i < count(); ++i) {
        if (auto *const tab = qobject_cast<DocumentTab *>(widget(i))) {
            found.push_back(tab);
        }
    }
    return found;
}

void Workspace::newDocument()
{
    add(std::make_unique<GraphDocument>(m_registry));
}

DocumentTab *Workspace::findTab(const QString &fileName) const
{
    // Relative names depend on the current folder.
    const QString name = QFileInfo(fileName).absoluteFilePath();
    for (DocumentTab *const tab : tabs()) {
        if (tab->document()->fileName() == name) {
            return tab;
        }
    }
    return nullptr;
}

bool Workspace::open(const QString &fileName)
{
    // Two tabs of one file would overwrite each other's changes.
    if (DocumentTab *const tab = findTab(fileName)) {
        setCurrentWidget(tab);
        return true;
    }
    auto document = GraphDocument::open(fileName, m_registry);
    if (!document) {
        // A file that cannot be parsed may be repaired; a missing one is only in the way.
        if (!QFileInfo::exists(fileName)) {
            m_settings.removeRecentFile(fileName);
        }
        showFailure(document.fault().detail);
        return false;
    }
    m_settings.addRecentFile(fileName);
    add(*std::move(document));
    rememberFiles();
    return true;
}

void Workspace::openWithDialog()
{
    // Graphs of one task are mostly in one folder.
    const QString folder =
        current() != nullptr ? QFileInfo(current()->document()->fileName()).path() : QString();
    const QStringList files =
        QFileDialog::getOpenFileNames(this, tr("Open graphs"), folder, graphFilter());
    for (const QString &file : files) {
        open(file);
    }
}

void Workspace::openExample(const QString &fileName)
{
    const QFileInfo info(fileName);
    if (QFileInfo(info.path()).isWritable()) {
        open(fileName);
        return;
    }
    // The user may not write to it, but its runs do. All files of the folder are copied: the names
    // in the graph are relative to it.
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString copy = documents + u"/Corvanta/"_s + info.dir().dirName();
    copyFolder(info.path(), copy);
    open(copy + u'/' + info.fileName());
}

void Workspace::showStartPage()
{
    if (indexOf(m_start) < 0) {
        insertTab(0, m_start, tr("Start"));
    }
    setCurrentWidget(m_start);
}

DocumentTab *Workspace::add(std::unique_ptr<GraphDocument> document)
{
    auto *const tab = new DocumentTab(std::move(document), this);
    connect(tab, &DocumentTab::titleChanged, this, [this, tab] { updateTitle(tab); });
    const int index = addTab(tab, tab->title());
    // First: the window must know the tab before it becomes the current one.
    Q_EMIT tabOpened(tab);
    setCurrentIndex(index);
    updateTitle(tab);
    // It is for windows without a graph; the menu shows it again.
    if (const int start = indexOf(m_start); start >= 0) {
        removeTab(start);
    }
    return tab;
}

void Workspace::updateTitle(DocumentTab *tab)
{
    const int index = indexOf(tab);
    setTabText(index, tab->title());
    setTabToolTip(index, QDir::toNativeSeparators(tab->document()->fileName()));
    Q_EMIT titleChanged();
}

void Workspace::finishEditing()
{
    // A field reports its edit when it loses the focus, which may destroy it.
    const QPointer<QWidget> focus = QApplication::focusWidget();
    if (focus != nullptr) {
        focus->clearFocus();
    }
    // The editor of a cell is closed by it.
    if (focus != nullptr && focus->isVisible()) {
        focus->setFocus();
    }
}

bool Workspace::save(DocumentTab *tab)
{
    finishEditing();
    const QString name = tab->document()->fileName();
    return name.isEmpty() ? saveAs(tab) : write(tab, name);
}

bool Workspace::saveAs(DocumentTab *tab)
{
    finishEditing();
    const QString name = tab->document()->fileName();
    QFileDialog dialog(this, tr("Save the graph"), name, graphFilter());
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    // The dialog itself asks before it replaces a file.
    dialog.setDefaultSuffix(u"graph"_s);
    return dialog.exec() == QDialog::Accepted && write(tab, dialog.selectedFiles().value(0));
}

bool Workspace::write(DocumentTab *tab, const QString &fileName)
{
    GraphDocument *const document = tab->document();
    // The message above the canvas may come too late, or be overlooked.
    if (fileName == document->fileName() && QFileInfo::exists(fileName) &&
        document->hasChangedOnDisk() &&
        ask(tr("Save the graph"),
            tr("Another program has changed \"%1\". Save this version over it?")
                .arg(document->title()),
            QMessageBox::Save | QMessageBox::Cancel) != QMessageBox::Save) {
        return false;
    }
    // saveAs() makes inputs absolute when the folder changes, which a plain save must not do.
    const auto saved =
        fileName == document->fileName() ? document->save() : document->saveAs(fileName);
    if (!saved) {
        showFailure(saved.fault().detail);
        return false;
    }
    m_settings.addRecentFile(fileName);
    rememberFiles();
    return true;
}

bool Workspace::saveAll()
{
    // Stops at the first one that the user cancels.
    return std::ranges::all_of(
        tabs(), [this](DocumentTab *tab) { return !tab->document()->isModified() || save(tab); });
}

void Workspace::reload(DocumentTab *tab)
{
    GraphDocument *const document = tab->document();
    const QString question =
        tr("Read \"%1\" again and lose the unsaved changes?").arg(document->title());
    if (document->isModified() &&
        ask(tr("Reload"), question, QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes) {
        return;
    }
    if (const auto loaded = document->reload(); !loaded) {
        showFailure(loaded.fault().detail);
    }
}

bool Workspace::mayClose(DocumentTab *tab)
{
    if (tab->runs()->isRunning()) {
        setCurrentWidget(tab);
        if (ask(tr("Run in progress"),
                tr("Close \"%1\" and stop its run?").arg(tab->document()->title()),
                QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes) {
            return false;
        }
    }
    return askToSave(tab);
}

bool Workspace::askToSave(DocumentTab *tab)
{
    if (!tab->document()->isModified()) {
        return true;
    }
    setCurrentWidget(tab);
    // The tab is shown first, so that the user sees what the question is about.
    switch (ask(tr("Unsaved changes"),
                tr("Save the changes of \"%1\"?").arg(tab->document()->title()),
                QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel)) {
    case QMessageBox::Save:
        return save(tab);
    case QMessageBox::Discard:
        // Else the next session would offer the changes that the user has just given up.
        tab->document()->discardRecovery();
        return true;
    default:
        return false;
    }
}

bool Workspace::close(int index)
{
    auto *const tab = qobject_cast<DocumentTab *>(widget(index));
    if (tab == nullptr) {
        removeTab(index); // the start page
        return true;
    }
    if (!mayClose(tab)) {
        return false;
    }
    removeTabOf(tab);
    return true;
}

void Workspace::removeTabOf(DocumentTab *tab)
{
    removeTab(indexOf(tab)); // emits currentTabChanged() while the document still exists
    delete tab;
    if (!m_isClosing) {
        rememberFiles();
        // Without tabs the window would be empty.
        if (count() == 0) {
            showStartPage();
        }
    }
}

bool Workspace::closeAll()
{
    finishEditing();
    // All questions first: a tab is closed only when none is cancelled.
    for (DocumentTab *const tab : tabs()) {
        if (!mayClose(tab)) {
            return false;
        }
    }
    rememberFiles();
    // Else each removal would take its file from the list of the next session.
    m_isClosing = true;
    for (DocumentTab *const tab : tabs()) {
        removeTabOf(tab);
    }
    m_isClosing = false;
    return true;
}

void Workspace::rememberFiles()
{
    QStringList files;
    for (const DocumentTab *const tab : tabs()) {
        if (!tab->document()->fileName().isEmpty()) {
            files << tab->document()->fileName();
        }
    }
    m_settings.setOpenFiles(files);
}

void Workspace::reopenFiles()
{
    const QStringList files = m_settings.openFiles();
    for (const QString &file : files) {
        // No message for a file that was removed or is on a drive that is not mounted now.
        if (QFileInfo::exists(file)) {
            open(file);
        }
    }
}

void Workspace::offerRecovery()
{
    const QVector<GraphDocument::Recovery> recoveries = GraphDocument::recoveries();
    if (recoveries.isEmpty()) {
        return;
    }
    QStringList names;
    for (const GraphDocument::Recovery &recovery : recoveries) {
        const QString name = QFileInfo(recovery.original).fileName();
        // A graph that was never saved has no file, but it has a copy for the recovery.
        names << (name.isEmpty() ? tr("Untitled") : name);
    }
    QMessageBox box(QMessageBox::Question, tr("Recovery"),
                    tr("The last session ended unexpectedly. Recover the unsaved changes?"),
                    QMessageBox::NoButton, this);
    box.setInformativeText(names.join(u'\n'));
    box.setTextFormat(Qt::PlainText);
    QAbstractButton *const yes = box.addButton(tr("&Recover"), QMessageBox::AcceptRole);
    QAbstractButton *const no = box.addButton(tr("&Discard"), QMessageBox::DestructiveRole);
    // The files stay, and are offered again at the next start.
    box.addButton(tr("&Later"), QMessageBox::RejectRole);
    box.exec();
    if (box.clickedButton() == yes) {
        recover(recoveries);
    } else if (box.clickedButton() == no) {
        std::for_each(recoveries.begin(), recoveries.end(), GraphDocument::discard);
    }
}

void Workspace::recover(const QVector<GraphDocument::Recovery> &recoveries)
{
    for (const GraphDocument::Recovery &recovery : recoveries) {
        auto document = GraphDocument::recover(recovery, m_registry);
        if (!document) {
            showFailure(document.fault().detail);
            continue;
        }
        // The saved state may be open already, from the list of the last session.
        if (DocumentTab *const tab = findTab(recovery.original);
            tab != nullptr && !recovery.original.isEmpty()) {
            removeTabOf(tab);
        }
        add(*std::move(document));
    }
}

int Workspace::ask(const QString &title, const QString &question, int buttons)
{
    QMessageBox box(QMessageBox::Question, title, question, QMessageBox::StandardButtons(buttons),
                    this);
    box.setTextFormat(Qt::PlainText); // it may contain a file name
    return box.exec();
}

void Workspace::showFailure(const QString &text)
{
    QMessageBox box(QMessageBox::Warning, tr("Corvanta"), text, QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText); // as above
    box.exec();
}

} // namespace corvanta::studio
