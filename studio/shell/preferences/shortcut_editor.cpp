// The list shows the texts of the commands in the order of the menus.
#include "studio/shell/preferences/shortcut_editor.h"

#include "studio/shell/commands.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

enum Column { Name, Keys, Meaning };

/// Any column: a user may search for a key as well as for a word of the meaning.
bool contains(const QTreeWidgetItem &item, const QString &text)
{
    return item.text(Name).contains(text, Qt::CaseInsensitive) ||
           item.text(Keys).contains(text, Qt::CaseInsensitive) ||
           item.text(Meaning).contains(text, Qt::CaseInsensitive);
}

/// The text of a menu without its mnemonic and without the dots that announce a dialog, after the
/// part of the window that it belongs to.
QString plainText(const QAction &action)
{
    const QString text = action.text().remove(u'&').remove(u"..."_s);
    const QString part = Commands::partOf(action);
    return part.isEmpty() ? text : part + u": "_s + text;
}

QString keyTexts(const QAction &action)
{
    // Some commands have two, for keyboards without one of the keys.
    return QKeySequence::listToString(action.shortcuts(), QKeySequence::NativeText);
}

} // namespace

ShortcutEditor::ShortcutEditor(Commands &commands, QWidget *parent)
    : QDialog(parent)
    , m_commands(commands)
    , m_filter(new QLineEdit(this))
    , m_tree(new QTreeWidget(this))
    , m_keys(new QKeySequenceEdit(this))
    , m_clear(new QPushButton(tr("&Remove"), this))
    , m_reset(new QPushButton(tr("&Default"), this))
    , m_conflict(new QLabel(this))
{
    setObjectName(u"shortcutEditor"_s);
    setWindowTitle(tr("Shortcuts"));
    makeTree();
    makeFields();
    auto *const row = new QHBoxLayout; // the dialog's layout owns it
    row->addWidget(m_keys, 1);
    row->addWidget(m_clear);
    row->addWidget(m_reset);
    auto *const close = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(close, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_filter);
    layout->addWidget(m_tree, 1);
    layout->addLayout(row);
    layout->addWidget(m_conflict);
    layout->addWidget(close);
    // In letters, because the user may have chosen another text size.
    resize(fontMetrics().averageCharWidth() * 110, fontMetrics().height() * 30);
    m_tree->setCurrentItem(m_tree->topLevelItem(0));
}

void ShortcutEditor::makeTree()
{
    m_tree->setObjectName(u"shortcutTree"_s);
    m_tree->setAccessibleName(tr("Commands and their shortcuts"));
    m_tree->setHeaderLabels({tr("Command"), tr("Shortcut"), tr("Meaning")});
    m_tree->setRootIsDecorated(false);
    for (QAction *const action : m_commands.all() + m_commands.ofParts()) {
        auto *const item = new QTreeWidgetItem(m_tree); // the tree owns it
        item->setText(Name, plainText(*action));
        item->setText(Meaning, action->statusTip());
        item->setData(Name, Qt::UserRole, QVariant::fromValue(action));
        showKeys(item);
    }
    // Without a command: Qt moves the focus with it, so it cannot be changed.
    new QTreeWidgetItem(m_tree, {tr("Canvas: Next Action"),
                                 QKeySequence(Qt::Key_Tab).toString(QKeySequence::NativeText),
                                 tr("Go to the next action, and out of the canvas after the last; "
                                    "with Shift backwards")});
    m_tree->header()->resizeSections(QHeaderView::ResizeToContents);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, &ShortcutEditor::showCurrent);
}

void ShortcutEditor::makeFields()
{
    m_filter->setObjectName(u"shortcutFilter"_s);
    m_filter->setPlaceholderText(tr("Search commands"));
    m_filter->setAccessibleName(tr("Search commands"));
    m_filter->setClearButtonEnabled(true);
    m_keys->setObjectName(u"shortcutKeys"_s);
    m_keys->setAccessibleName(tr("New shortcut"));
    m_conflict->setObjectName(u"shortcutConflict"_s);
    m_conflict->setWordWrap(true);
    // Enter ends the recording of a shortcut and must not press a button.
    for (QPushButton *const button : {m_clear, m_reset}) {
        button->setAutoDefault(false);
    }
    connect(m_filter, &QLineEdit::textChanged, this, &ShortcutEditor::filter);
    connect(m_keys, &QKeySequenceEdit::editingFinished, this,
            [this] { setKeys(m_keys->keySequence()); });
    connect(m_clear, &QPushButton::clicked, this, [this] { setKeys({}); });
    connect(m_reset, &QPushButton::clicked, this, [this] {
        if (const QAction *const action = currentAction()) {
            setKeys(Commands::defaultShortcut(*action));
        }
    });
}

void ShortcutEditor::filter(const QString &text)
{
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        QTreeWidgetItem *const item = m_tree->topLevelItem(i);
        // Hidden and not removed, so that the order of the menus stays.
        item->setHidden(!contains(*item, text));
    }
}

QAction *ShortcutEditor::currentAction() const
{
    const QTreeWidgetItem *const item = m_tree->currentItem();
    return item != nullptr ? item->data(Name, Qt::UserRole).value<QAction *>() : nullptr;
}

void ShortcutEditor::showCurrent()
{
    const QAction *const action = currentAction();
    m_keys->setEnabled(action != nullptr);
    m_keys->setKeySequence(action != nullptr ? action->shortcut() : QKeySequence());
    // The message was about another command, or about keys that are replaced now.
    m_conflict->clear();
}

void ShortcutEditor::showKeys(QTreeWidgetItem *item)
{
    item->setText(Keys, keyTexts(*item->data(Name, Qt::UserRole).value<QAction *>()));
}

void ShortcutEditor::setKeys(const QKeySequence &keys)
{
    QAction *const action = currentAction();
    if (action == nullptr || keys == action->shortcut()) {
        return;
    }
    if (const QAction *const other = m_commands.findConflict(action, keys)) {
        // Taking the shortcut away from the other command would surprise later.
        m_keys->setKeySequence(action->shortcut());
        m_conflict->setText(tr("%1 is the shortcut of \"%2\"")
                                .arg(keys.toString(QKeySequence::NativeText), plainText(*other)));
        return;
    }
    m_commands.setShortcut(action, keys);
    showKeys(m_tree->currentItem());
    showCurrent();
}

} // namespace corvanta::studio
