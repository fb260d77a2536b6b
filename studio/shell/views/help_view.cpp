// Makes the page of an action when it is shown, so that it is never out of date.
#include "studio/shell/views/help_view.h"

#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "corvanta/help.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// Escaped: the texts are not HTML, and some name elements such as <s>.
QString ofTable(const QString &text)
{
    return QCoreApplication::translate("Parameters", text.toUtf8()).toHtmlEscaped();
}

QString ofPage(const char *text)
{
    return QCoreApplication::translate("HelpView", text);
}

/// "0: first, 1: second" for a choice, else the name of the type.
QString typeText(const ParameterInfo &info)
{
    if (info.choices.isEmpty()) {
        const QString unit = info.unit.isEmpty() ? QString() : u" ("_s + ofTable(info.unit) + u')';
        return ActionParameters::typeName(info.type) + unit;
    }
    QStringList choices;
    for (int i = 0; i < info.choices.size(); ++i) {
        // A number without a text is not a choice.
        if (!info.choices.at(i).isEmpty()) {
            choices << u"%1: %2"_s.arg(QString::number(i), ofTable(info.choices.at(i)));
        }
    }
    return choices.join(u"<br>"_s);
}

/// The row has an anchor, so that a panel can open the page at one parameter.
QString parameterRow(const ParameterInfo &info)
{
    const QString label = ofTable(info.label.isEmpty() ? info.name : info.label);
    return u"<tr><td><a name=\"%1\"></a><b>%2</b><br><code>%1</code></td><td>%3</td><td>%4</td>"
           "<td>%5</td></tr>"_s.arg(info.name.toHtmlEscaped(), label, typeText(info),
                                    info.defaultValue.toHtmlEscaped(), ofTable(info.meaning));
}

QString parameterTable(const ActionParameters &parameters)
{
    QString rows;
    for (const ParameterInfo &info : parameters.parameters()) {
        rows += parameterRow(info);
        // The members of an element are set like parameters, and need the same help.
        for (const ParameterInfo &member : info.members) {
            rows += parameterRow(member);
        }
    }
    return u"<h3>%1</h3><table border=\"1\" cellspacing=\"0\" cellpadding=\"4\"><tr><th>%2</th>"
           "<th>%3</th><th>%4</th><th>%5</th></tr>%6</table>"_s.arg(
               ofPage(QT_TRANSLATE_NOOP("HelpView", "Parameters")),
               ofPage(QT_TRANSLATE_NOOP("HelpView", "Name")),
               ofPage(QT_TRANSLATE_NOOP("HelpView", "Type")),
               ofPage(QT_TRANSLATE_NOOP("HelpView", "Default")),
               ofPage(QT_TRANSLATE_NOOP("HelpView", "Meaning")), rows);
}

/// A link to the page of the installed reference, which also has examples and messages. Empty
/// where the documentation is not installed.
QString referenceLink(const QString &type)
{
    // Relative to the program, so that an installation can be moved.
    const QString file = QCoreApplication::applicationDirPath() +
                         u"/../share/doc/corvanta/html/reference/actions/%1.html"_s.arg(type);
    if (!QFileInfo::exists(file)) {
        return {};
    }
    return u"<p><a href=\"%1\">%2</a></p>"_s.arg(
        QUrl::fromLocalFile(QDir::cleanPath(file)).toString(QUrl::FullyEncoded),
        ofPage(QT_TRANSLATE_NOOP("HelpView", "Examples and messages")));
}

} // namespace

QString actionHelp(ActionItem &prototype)
{
    QString page = u"<h2>%1</h2><p>%2</p><p>%3</p>"_s.arg(
        QString::fromLatin1(prototype.getTypeName()), ofTable(prototype.getDescription()),
        ofPage(QT_TRANSLATE_NOOP("HelpView", "Inputs: %1, outputs: %2"))
            .arg(QString::number(prototype.pinInCount()),
                 QString::number(prototype.pinOutCount())));
    if (const QStringList types = prototype.getFileTypes(); !types.isEmpty()) {
        page += u"<p>%1</p>"_s.arg(ofPage(QT_TRANSLATE_NOOP("HelpView", "Files: %1"))
                                       .arg(types.join(u", "_s).toHtmlEscaped()));
    }
    page += referenceLink(QString::fromLatin1(prototype.getTypeName()));
    if (const auto *const parameters = dynamic_cast<const ActionParameters *>(&prototype)) {
        page += parameterTable(*parameters);
    }
    return page;
}

HelpView::HelpView(const ActionRegistry &registry, QWidget *parent)
    : QTextBrowser(parent)
    , m_registry(registry)
{
    setObjectName(u"help"_s);
    setAccessibleName(tr("Help"));
    // In the browser of the user.
    setOpenExternalLinks(true);
    // An action does not name its page, it only opens it.
    for (const auto &prototype : registry.prototypes()) {
        setHelpOpener([&](const QString &page, const QString &) {
            m_types.insert(page, QString::fromLatin1(prototype->getTypeName()));
        });
        prototype->showHelp();
    }
    m_types.remove({}); // of actions without a page
    setHelpOpener([this](const QString &page, const QString &anchor) { showPage(page, anchor); });
    showAction({});
}

HelpView::~HelpView()
{
    // The function refers to this view.
    setHelpOpener({});
}

void HelpView::showAction(const QString &type)
{
    ActionItem *const prototype = m_registry.prototype(type);
    setHtml(prototype != nullptr
                ? actionHelp(*prototype)
                : tr("Select an action and press F1 to see its description here."));
}

void HelpView::showPage(const QString &page, const QString &anchor)
{
    showAction(m_types.value(page));
    scrollToAnchor(anchor);
    Q_EMIT pageOpened();
}

} // namespace corvanta::studio
