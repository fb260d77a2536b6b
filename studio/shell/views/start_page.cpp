// Both lists are opened by Enter or a double click; tool tips have the full names of the files.
#include "studio/shell/views/start_page.h"

#include "corvanta/edit/shown_text.h"
#include "studio/shell/preferences/settings.h"
#include "studio/shell/views/examples.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr int kFileRole = Qt::UserRole;

/// Two lines: what the item is, and below it where it is or what it shows.
QListWidgetItem *addItem(QListWidget *list, const QString &file, const QString &title,
                         const QString &remark)
{
    const QString text = remark.isEmpty() ? title : title + u'\n' + remark;
    auto *const item = new QListWidgetItem(text, list); // the list owns it
    item->setData(kFileRole, file);
    item->setToolTip(plainToolTip(QDir::toNativeSeparators(file)));
    return item;
}

} // namespace

StartPage::StartPage(const Settings &settings, QWidget *parent)
    : QWidget(parent)
    , m_settings(settings)
{
    setObjectName(u"startPage"_s);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(40, 24, 40, 24);
    auto *const title = new QLabel(tr("Corvanta"), this);
    QFont font = title->font();
    // Relative: the user may have chosen another text size.
    font.setPointSizeF(font.pointSizeF() * 2);
    title->setFont(font);
    layout->addWidget(title);
    addButtons(layout);
    m_recent = addList(layout, tr("Re&cent graphs"), u"startRecent"_s);
    m_examples = addList(layout, tr("E&xamples"), u"startExamples"_s);
    connect(m_recent, &QListWidget::itemActivated, this, [this](const QListWidgetItem *item) {
        Q_EMIT fileChosen(item->data(kFileRole).toString());
    });
    // A signal of its own: an installed example is copied before it is opened.
    connect(m_examples, &QListWidget::itemActivated, this, [this](const QListWidgetItem *item) {
        Q_EMIT exampleChosen(item->data(kFileRole).toString());
    });
    fillExamples();
}

void StartPage::addButtons(QVBoxLayout *layout)
{
    auto *const row = new QHBoxLayout; // the page's layout owns it
    auto *const create = new QPushButton(tr("&New graph"), this);
    create->setObjectName(u"startNew"_s);
    connect(create, &QPushButton::clicked, this, &StartPage::newRequested);
    auto *const open = new QPushButton(tr("&Open a graph..."), this);
    open->setObjectName(u"startOpen"_s);
    connect(open, &QPushButton::clicked, this, &StartPage::openRequested);
    row->addWidget(create);
    row->addWidget(open);
    row->addStretch();
    layout->addLayout(row);
}

QListWidget *StartPage::addList(QVBoxLayout *layout, const QString &title, const QString &name)
{
    auto *const list = new QListWidget(this);
    list->setObjectName(name);
    // A screen reader would read the mnemonic.
    list->setAccessibleName(QString(title).remove(u'&'));
    list->setAlternatingRowColors(true);
    list->setSpacing(2);
    list->setWordWrap(true);
    auto *const label = new QLabel(title, this);
    // The mnemonic of the label leads to the list.
    label->setBuddy(list);
    layout->addWidget(label);
    layout->addWidget(list, 1);
    return list;
}

void StartPage::fillExamples()
{
    // Once: the installed examples do not change while the program runs.
    for (const Example &example : findExamples(examplesFolder())) {
        addItem(m_examples, example.fileName, example.title, example.meaning);
    }
}

void StartPage::refresh()
{
    // The list may have changed since the page was shown.
    m_recent->clear();
    for (const QString &file : m_settings.recentFiles()) {
        const QFileInfo info(file);
        addItem(m_recent, file, info.completeBaseName(), QDir::toNativeSeparators(info.path()));
    }
}

void StartPage::showEvent(QShowEvent *event)
{
    // The lists of the settings have no signal, so they are read when the page is shown.
    refresh();
    QWidget::showEvent(event);
}

} // namespace corvanta::studio
