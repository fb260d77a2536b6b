// Default behaviour of actions, and the operations that actions call on their pins.
//
// An action has pins (m_ports) only while it is part of a run. Prototypes and the actions of panels
// have none.
#include "corvanta/action_item.h"

#include "corvanta/files.h"
#include "engine/pins.h"

#include <QLocale>

#include <limits>
#include <sstream>

namespace {

/// The version that determines the defaults of an action; infinity for a new one.
double versionOf(const XMLNode &saved, const GlobalParameters *parameters)
{
    // Infinite without a graph, so that no comparison with an older version changes a default.
    const double fromGraph = parameters != nullptr ? parameters->graphVersion()
                                                   : std::numeric_limits<double>::infinity();
    return xmltof(saved.getAttribute("version"), fromGraph);
}

} // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the contract fixes the type of the argument
ActionItem::ActionItem(XMLNode saved, GlobalParameters *parameters)
    : m_globalParameters(parameters)
    , m_savedVersion(versionOf(saved, parameters))
{
}

ActionItem::~ActionItem() = default;

void ActionItem::addPinIn()
{
    m_nPinIn = qMin(m_nPinIn + 1, m_maxPinIn);
}

void ActionItem::addPinOut()
{
    ++m_nPinOut;
}

void ActionItem::removePinIn()
{
    m_nPinIn = qMax(m_nPinIn - 1, 0);
}

void ActionItem::removePinOut()
{
    m_nPinOut = qMax(m_nPinOut - 1, 0);
}

QStringList ActionItem::getFileTypes() const
{
    return {};
}

QStringList ActionItem::getTags() const
{
    return {};
}

QStringList ActionItem::getAlternativeNames() const
{
    return {};
}

ActionItem *ActionItem::clone(GlobalParameters *parameters)
{
    std::wostringstream out;
    out.exceptions(std::ios::badbit); // otherwise text is lost when there is no memory
    save(out, QString::fromLatin1(getTypeName()));
    // A parameter with a character that XML cannot contain makes the copy lose its parameters.
    const auto saved = XMLNode::parse(QString::fromStdWString(out.str()).toUtf8());
    return newInstance(new XMLNode(saved ? *saved : XMLNode::emptyNode()), parameters);
}

char ActionItem::init()
{
    m_warningFlag = 0;
    m_errorFlag = 0;
    return 0;
}

char ActionItem::close()
{
    return 0;
}

void ActionItem::wakeAll() {}

float ActionItem::computeCompletion()
{
    return -1;
}

bool ActionItem::completionIn2Pass()
{
    return false;
}

char ActionItem::canRunInParallel(const QString &, bool *answer)
{
    *answer = true;
    return 0;
}

char ActionItem::fullTableRequiredToComputeMetas(int, bool *answer)
{
    *answer = false;
    return 0;
}

QString ActionItem::getHDFile(int, bool)
{
    return {};
}

quint64 ActionItem::getHDTime()
{
    return 0;
}

void ActionItem::clearHDFile() {}

// A pin above the highest linked one does not exist in m_ports; it is a table without rows.
const OneRow *ActionItem::getNextRowFromInPin(int pin)
{
    return m_ports != nullptr && pin < m_ports->pinsIn() ? m_ports->nextRow(pin) : nullptr;
}

const OneRow *ActionItem::getInputColumns(int pin)
{
    static const OneRow kNoColumns; // of a pin above the highest linked one
    return pin < m_ports->pinsIn() ? m_ports->in(pin).columns() : &kNoColumns;
}

OneRow *ActionItem::getOutputRowForOutputPin(int pin)
{
    return m_ports->out(pin).row();
}

void ActionItem::setRowReadyForOutput(int pin)
{
    m_ports->out(pin).rowReady();
}

RowBuffer *ActionItem::bufferForOutputPin(int pin)
{
    return m_ports->out(pin).buffer();
}

bool ActionItem::isOutputPinRead(int pin) const
{
    return m_ports->out(pin).isRead();
}

QString ActionItem::expandFile(const QString &name) const
{
    return m_globalParameters != nullptr ? m_globalParameters->expandFile(name) : name;
}

QString ActionItem::expandString(const QString &text) const
{
    return m_globalParameters != nullptr ? m_globalParameters->expandString(text) : text;
}

QString ActionItem::expandOutputFile(const QString &name, const QString &part) const
{
    QString expanded =
        m_globalParameters != nullptr ? m_globalParameters->expandOutputFile(name) : name;
    // A null part means one file; an empty one still takes the place of "*".
    if (part.isNull()) {
        return expanded;
    }
    if (expanded.contains(u'*')) {
        return expanded.replace(u'*', part);
    }
    // A dot in a folder's name does not begin an extension.
    const qsizetype dot = expanded.lastIndexOf(u'.');
    if (dot > expanded.lastIndexOf(u'/')) {
        return expanded.insert(dot, part);
    }
    addExtentionIfRequired(&expanded, part);
    return expanded;
}

void ActionItem::saveAI(std::wostream &out, const QString &elementName, double version) const
{
    out << L'<' << elementName.toStdWString() << L" version='"
        << QString::number(version, 'g', QLocale::FloatingPointShortest).toStdWString() << L'\'';
}
