// The text of the value and the tree:
//
//     <Levels>                                  the wrapper, of some parameters
//       <Level name='a' new='1'>                an item; "new" is not declared and kept
//         <Item type='2'><s>x</s></Item>        an item inside it; its content belongs to the item
//       </Level>
//     </Levels>
//
// An item of the tree owns its element; elements that are items themselves are children of the
// item.
#include "panels/structure_editor.h"

#include "corvanta/xml_node.h"
#include "panels/glyphs.h"

#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QSignalBlocker>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <sstream>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using Type = ParameterInfo::Type;
using Place = ParameterInfo::Place;

constexpr int kVisibleRows = 8;  // as high as the buttons; longer trees scroll
constexpr auto kString = "s"_L1; // an element of a string list

QString escaped(const QString &text)
{
    ToXMLStringTool tool;
    return QString::fromWCharArray(tool.toXML(text));
}

/// An element without its lists, which are items of the tree.
struct Element
{
    QString name;
    std::vector<std::pair<QString, QString>> attributes;
    QString text;
    std::vector<Element> children;

    QString startTag() const
    {
        QString tag = u'<' + name;
        for (const auto &[attribute, value] : attributes) {
            tag += u' ' + attribute + u"='"_s + escaped(value) + u'\'';
        }
        return tag + u'>';
    }
    /// The content that is not an item of the tree.
    QString inner() const
    {
        QString xml = escaped(text);
        for (const Element &child : children) {
            xml += child.startTag() + child.inner() + u"</"_s + child.name + u'>';
        }
        return xml;
    }
    Element *child(const QString &wanted)
    {
        for (Element &child : children) {
            if (child.name == wanted) {
                return &child;
            }
        }
        return nullptr;
    }
};

/// `node` with all that is in it. Spaces between elements are dropped.
Element elementOf(const XMLNode &node)
{
    Element element;
    element.name = node.getName();
    for (const QString &name : node.attributeNames()) {
        const auto *const value = node.getAttribute(name.toLatin1().constData());
        element.attributes.emplace_back(name, QString::fromUtf16(value));
    }
    for (int i = 0; i < node.nChildNode(); ++i) {
        element.children.push_back(elementOf(node.getChildNode(i)));
    }
    const bool isText = element.children.empty() || !node.text().trimmed().isEmpty();
    element.text = isText ? node.text() : QString();
    return element;
}

/// In the form of a parameter's value: one line per text.
QString stringsOf(const Element &list)
{
    QStringList texts;
    for (const Element &child : list.children) {
        if (child.name == kString) {
            texts << child.text;
        }
    }
    return texts.join(u'\n');
}

void setStrings(Element *list, const QString &value)
{
    std::erase_if(list->children, [](const Element &child) { return child.name == kString; });
    for (const QString &text : value.isEmpty() ? QStringList() : value.split(u'\n')) {
        list->children.push_back({kString, {}, text, {}});
    }
}

/// The value of a member; its default if the element does not have it.
QString memberValue(const Element &element, const ParameterInfo &member)
{
    if (member.place == Place::Content) {
        return member.type == Type::Strings ? stringsOf(element) : element.text;
    }
    if (member.place == Place::Element) {
        const Element *const child = const_cast<Element &>(element).child(member.name);
        return child == nullptr ? member.defaultValue : stringsOf(*child);
    }
    for (const auto &[name, value] : element.attributes) {
        if (name == member.name) {
            return value;
        }
    }
    return member.defaultValue;
}

/// Changes one attribute and keeps the order of the others. A default is not saved.
void setElementAttribute(Element *element, const ParameterInfo &member, const QString &value)
{
    const auto isMember = [&](const auto &attribute) { return attribute.first == member.name; };
    const auto found =
        std::find_if(element->attributes.begin(), element->attributes.end(), isMember);
    if (value == member.defaultValue && !member.saveAlways) {
        std::erase_if(element->attributes, isMember);
    } else if (found != element->attributes.end()) {
        found->second = value;
    } else {
        element->attributes.emplace_back(member.name, value);
    }
}

void setMember(Element *element, const ParameterInfo &member, const QString &value)
{
    if (member.place == Place::Attribute) {
        setElementAttribute(element, member, value);
    } else if (member.place == Place::Content && member.type != Type::Strings) {
        element->text = value;
    } else if (member.place == Place::Content) {
        setStrings(element, value);
    } else {
        if (element->child(member.name) == nullptr) {
            element->children.push_back({member.name, {}, {}, {}});
        }
        setStrings(element->child(member.name), value);
    }
}

/// The list inside an element; null if its elements have none.
const ParameterInfo *listIn(const QVector<ParameterInfo> &members)
{
    const auto found = std::find_if(members.begin(), members.end(), [](const ParameterInfo &info) {
        return info.type == Type::Structure;
    });
    return found == members.end() ? nullptr : &*found;
}

} // namespace

/// One element in the tree. `info` describes the list that it belongs to.
class ElementItem final : public QTreeWidgetItem
{
public:
    ElementItem(const ParameterInfo &list, Element own)
        : info(list)
        , element(std::move(own))
    {
        const ParameterInfo *const inner = listIn(info.members);
        for (auto child = element.children.begin(); child != element.children.end();) {
            const bool isItem = inner != nullptr && child->name == inner->itemElement;
            if (isItem) {
                addChild(new ElementItem(*inner, std::move(*child)));
            }
            child = isItem ? element.children.erase(child) : child + 1;
        }
        updateText();
    }

    /// The values by which a user recognises the element.
    void updateText()
    {
        QStringList values;
        for (const ParameterInfo &member : info.members) {
            const bool isShown =
                member.type == Type::Text && !memberValue(element, member).isEmpty();
            if (isShown && values.size() < 2) {
                values << memberValue(element, member);
            }
        }
        setText(0, values.isEmpty() ? StructureEditor::tr("(empty)") : values.join(u" \u2013 "_s));
    }

    QString xml() const
    {
        QString xml = element.startTag() + element.inner();
        for (int i = 0; i < childCount(); ++i) {
            xml += static_cast<const ElementItem *>(child(i))->xml();
        }
        return xml + u"</"_s + element.name + u'>';
    }

    const ParameterInfo &info; // in the context of the editor
    Element element;
};

StructureEditor::StructureEditor(const FieldContext &context)
    : FieldEditor(context)
    , m_tree(new QTreeWidget(this))
    , m_form(new QFormLayout)
{
    const bool isNested = listIn(this->context().info.members) != nullptr;
    m_tree->setHeaderHidden(true);
    m_tree->setRootIsDecorated(isNested);
    m_tree->setFixedHeight(fontMetrics().lineSpacing() * kVisibleRows + 2 * m_tree->frameWidth());
    m_tree->installEventFilter(this); // for the keys
    setMainControl(m_tree);
    auto *const buttons = new QVBoxLayout;
    auto *const top = new QHBoxLayout;
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(top);
    column->addLayout(m_form);
    top->addWidget(m_tree);
    top->addLayout(buttons);
    buttons->setSpacing(2);
    buttons->addWidget(makeButton(Glyph::Add, tr("Add an element"), [this] { add(Where::After); }));
    m_addInside = makeButton(Glyph::ToRight, tr("Add an element inside the current one"),
                             [this] { add(Where::Inside); });
    m_addInside->setVisible(isNested);
    buttons->addWidget(m_addInside);
    buttons->addWidget(
        makeButton(Glyph::Remove, tr("Remove the element"), [this] { removeCurrent(); }));
    buttons->addWidget(
        makeButton(Glyph::Up, tr("Move the element up"), [this] { moveCurrent(-1); }));
    m_lastButton = makeButton(Glyph::Down, tr("Move the element down"), [this] { moveCurrent(1); });
    buttons->addWidget(m_lastButton);
    buttons->addStretch(1);
    connect(m_tree, &QTreeWidget::currentItemChanged, this, [this] { showFields(); });
}

StructureEditor::~StructureEditor()
{
    // The tree is destroyed after this object, and clears itself then.
    m_tree->disconnect(this);
}

QString StructureEditor::value() const
{
    QString xml;
    for (int i = 0; i < m_tree->topLevelItemCount(); ++i) {
        xml += static_cast<const ElementItem *>(m_tree->topLevelItem(i))->xml();
    }
    const ParameterInfo &info = context().info;
    const bool hasWrapper = info.name != info.itemElement;
    return xml.isEmpty() || !hasWrapper ? xml : u"<%1>%2</%1>"_s.arg(info.name, xml);
}

void StructureEditor::setValue(const QString &value)
{
    const auto document = XMLNode::parse("<p>" + value.toUtf8() + "</p>");
    const ParameterInfo &info = context().info;
    Element root = document ? elementOf(*document) : Element();
    if (info.name != info.itemElement) {
        Element *const wrapper = root.child(info.name);
        root = wrapper == nullptr ? Element() : Element(*wrapper);
    }
    const QSignalBlocker blocker(m_tree); // the current item changes while the tree is filled
    m_tree->clear();
    for (Element &child : root.children) {
        m_tree->addTopLevelItem(new ElementItem(info, std::move(child)));
    }
    m_tree->expandAll();
    m_tree->setCurrentItem(m_tree->topLevelItem(0));
    showFields();
}

ElementItem *StructureEditor::current() const
{
    return static_cast<ElementItem *>(m_tree->currentItem());
}

void StructureEditor::showFields()
{
    ElementItem *const item = current();
    const QVector<ParameterInfo> *const members = item == nullptr ? nullptr : &item->info.members;
    // Elements of one list have the same fields, which get other values.
    if (members == nullptr || members != m_shownMembers) {
        while (m_form->rowCount() > 0) {
            m_form->removeRow(0);
        }
        m_fields.clear();
        m_shownMembers = members;
        for (int i = 0; members != nullptr && i < members->size(); ++i) {
            addField(i);
        }
        orderTabs();
    }
    for (size_t i = 0; i < m_fields.size(); ++i) {
        if (m_fields[i] != nullptr) {
            m_fields[i]->showValue(memberValue(item->element, (*members)[static_cast<int>(i)]));
        }
    }
}

/// Fields that are made later would come after all others of the panel. Those that are made with
/// the editor are in order, and in no window yet.
void StructureEditor::orderTabs()
{
    if (m_form->parentWidget()->window() != m_lastButton->window()) {
        return;
    }
    QWidget *last = m_lastButton;
    for (const FieldEditor *const field : m_fields) {
        for (QWidget *const control :
             field == nullptr ? QList<QWidget *>() : field->findChildren<QWidget *>()) {
            if ((control->focusPolicy() & Qt::TabFocus) != 0) {
                setTabOrder(last, control);
                last = control;
            }
        }
    }
}

/// The field of a member of the current element; members that are lists are in the tree.
void StructureEditor::addField(int index)
{
    const ParameterInfo &member = (*m_shownMembers)[index];
    if (member.type == Type::Structure) {
        m_fields.push_back(nullptr);
        return;
    }
    FieldContext inner = context();
    inner.info = member;
    inner.label = member.label;
    inner.meaning = member.meaning;
    FieldEditor *const field = makeEditor(inner);
    field->setEdited([this, index](const QString &text, Edit kind) {
        ElementItem *const item = current();
        setMember(&item->element, item->info.members[index], text);
        item->updateText();
        report(value(), kind);
    });
    if (field->showsLabel()) {
        m_form->addRow(field);
    } else {
        auto *const label = new QLabel(captionOf(inner.label));
        label->setBuddy(field->focusProxy());
        m_form->addRow(label, field);
    }
    m_fields.push_back(field);
}

void StructureEditor::add(Where where)
{
    ElementItem *const item = current();
    const bool isInside = where == Where::Inside && item != nullptr;
    const ParameterInfo *const list = isInside          ? listIn(item->info.members)
                                      : item != nullptr ? &item->info
                                                        : &context().info;
    if (list == nullptr) {
        return;
    }
    // A new element has the attributes that are always saved, so that its text is complete.
    Element element;
    element.name = list->itemElement;
    for (const ParameterInfo &member : list->members) {
        if (member.saveAlways && member.place == Place::Attribute) {
            setMember(&element, member, member.defaultValue);
        }
    }
    auto *const added = new ElementItem(*list, std::move(element));
    if (isInside) {
        item->addChild(added);
    } else if (item != nullptr && item->parent() != nullptr) {
        item->parent()->insertChild(item->parent()->indexOfChild(item) + 1, added);
    } else {
        m_tree->insertTopLevelItem(m_tree->indexOfTopLevelItem(item) + 1, added);
    }
    m_tree->setCurrentItem(added);
    report(value());
}

void StructureEditor::removeCurrent()
{
    delete current(); // removes itself from the tree, which makes a neighbour the current item
    showFields();
    report(value());
}

void StructureEditor::moveCurrent(int by)
{
    ElementItem *const item = current();
    if (item == nullptr) {
        return;
    }
    QTreeWidgetItem *const parent =
        item->parent() != nullptr ? item->parent() : m_tree->invisibleRootItem();
    const int to = parent->indexOfChild(item) + by;
    if (to >= 0 && to < parent->childCount()) {
        const bool isExpanded = item->isExpanded(); // taking the item out loses it
        parent->takeChild(parent->indexOfChild(item));
        parent->insertChild(to, item);
        item->setExpanded(isExpanded);
        m_tree->setCurrentItem(item);
        report(value());
    }
}

bool StructureEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress) {
        return FieldEditor::eventFilter(watched, event);
    }
    const auto *const key = static_cast<const QKeyEvent *>(event);
    const bool isControl = key->modifiers().testFlag(Qt::ControlModifier);
    if (key->key() == Qt::Key_Insert) {
        add(Where::After);
    } else if (key->key() == Qt::Key_Delete) {
        removeCurrent();
    } else if (isControl && key->key() == Qt::Key_Up) {
        moveCurrent(-1);
    } else if (isControl && key->key() == Qt::Key_Down) {
        moveCurrent(1);
    } else {
        return FieldEditor::eventFilter(watched, event);
    }
    return true;
}

} // namespace corvanta
