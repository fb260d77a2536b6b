// A module with two actions for files of lines such as "name=value": readPairs and writePairs.
//
// Build it with the CMakeLists.txt of this folder; docs/sdk.md explains every part.
#include "pairs.h"

#include <QFormLayout>
#include <QLineEdit>

#include <corvanta/failure_reason.h>

using namespace Qt::StringLiterals;

namespace {

using corvanta::Param;
using corvanta::ParamTable;

// The parameters of both actions. Reading, saving, "describe" and the panel use the table.
ParamTable<PairsParams> makeTable(Param<PairsParams> file)
{
    return {
        std::move(file).label("File").meaning("File with a pair on each line.").always().required(),
        corvanta::text("separator", &PairsParams::separator)
            .label("Separator")
            .meaning("Text between the name and the value.")
            .required(),
    };
}

constexpr FileFormat kReadFormats[] = {{FileFormat::Read, FileFormat::SeparatedText, "pairs"}};
constexpr FileFormat kWriteFormats[] = {{FileFormat::Write, FileFormat::SeparatedText, "pairs"}};

const corvanta::ActionEntry kReadEntry = {
    .typeName = "readPairs",
    .description = "Read a file of pairs",
    .icon = ":/Pairs/pairs.svg",
    .fileTypes = "pairs",
    .tags = "Readers",
    .keywords = "pairs names values",
    .pinsIn = 0,
    .makeAction = corvanta::makeAction<ReadPairs>,
    .makePanel = corvanta::makePanel<PairsPanel>,
    .formats = kReadFormats,
};
const corvanta::ActionEntry kWriteEntry = {
    .typeName = "writePairs",
    .description = "Write a file of pairs",
    .icon = ":/Pairs/pairs.svg",
    .fileTypes = "pairs",
    .tags = "Writers",
    .keywords = "pairs names values",
    .makeAction = corvanta::makeAction<WritePairs>,
    .makePanel = corvanta::makePanel<PairsPanel>,
    .formats = kWriteFormats,
};

} // namespace

ReadPairs::ReadPairs(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadEntry, saved, parameters)
{
}

const ParamTable<PairsParams> &ReadPairs::paramTable()
{
    static const auto table =
        makeTable(corvanta::text("fileName", &PairsParams::fileName).inputFile());
    return table;
}

bool ReadPairs::step()
{
    OneRow *const row = getOutputRowForOutputPin(0);
    if (!m_file.isOpen()) {
        m_file.setFileName(expandFile(m_params.fileName));
        if (!m_file.open(QIODevice::ReadOnly)) {
            fail(u"Error: readPairs: cannot open the file '%1'\n"_s.arg(m_file.fileName()),
                 m_file.errorString());
            return false;
        }
        row->setColName({u"name"_s, u"value"_s});
        row->setMetaData({MetaInfo(), MetaInfo()}); // two columns of text
    }
    while (!m_file.atEnd()) {
        if (yieldRequested()) {
            return true; // to be called again
        }
        ++m_line;
        const QString line = QString::fromUtf8(m_file.readLine()).remove(u'\n').remove(u'\r');
        const qsizetype at = line.indexOf(m_params.separator);
        if (at < 0) {
            m_skipped.add([this] { return u"line %1"_s.arg(m_line); });
            continue;
        }
        const QString value = line.mid(at + m_params.separator.size());
        row->setCol(0, bytesFromQString(bufferForOutputPin(0), line.left(at)));
        row->setCol(1, bytesFromQString(bufferForOutputPin(0), value));
        setRowReadyForOutput(0);
    }
    warnOf(m_skipped, m_file.fileName(), u"line"_s,
           u"Warning: readPairs: '%1' has %2 without a separator, the first is %3\n"_s);
    return false;
}

void ReadPairs::finish()
{
    m_file.close();
    m_line = 0;
    m_skipped.reset();
}

WritePairs::WritePairs(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteEntry, saved, parameters)
{
}

const ParamTable<PairsParams> &WritePairs::paramTable()
{
    static const auto table =
        makeTable(corvanta::text("fileName", &PairsParams::fileName).outputFile());
    return table;
}

bool WritePairs::step()
{
    const QString name = expandOutputFile(m_params.fileName, QString());
    if (!m_file.isOpen() && !m_file.open(name, {.action = getIdx()})) {
        fail(u"Error: writePairs: cannot open the file '%1'\n"_s.arg(name),
             corvanta::failureReason(m_file));
        return false;
    }
    while (const OneRow *const row = getNextRowFromInPin(0)) {
        if (row->numberOfColumns() < 2) {
            fail(u"Error: writePairs: the input has less than two columns\n"_s);
            return false;
        }
        getOutputRowForOutputPin(0)->copyFrom(row); // the next action gets the rows as well
        const QString line = row->text(0) + m_params.separator + row->text(1) + u'\n';
        const QByteArray bytes = line.toUtf8();
        setRowReadyForOutput(0);
        if (!m_file.write(bytes.constData(), bytes.size())) {
            fail(u"Error: writePairs: cannot write the file '%1'\n"_s.arg(name),
                 corvanta::failureReason(m_file));
            return false;
        }
        if (yieldRequested()) {
            return true;
        }
    }
    return false;
}

// The file appears under its name only when the run is good.
void WritePairs::finish()
{
    if (!m_file.isOpen() || !runIsGood()) {
        m_file.discard();
    } else if (!m_file.commit()) {
        fail(u"Error: writePairs: cannot write the file '%1'\n"_s.arg(m_file.target()),
             corvanta::failureReason(m_file));
    }
}

PairsPanel::PairsPanel(QWidget *parent, ActionItem *action)
    : UpdateClassWidget(parent, action)
    , m_parameters(dynamic_cast<ActionParameters *>(action))
{
    auto *const form = new QFormLayout(this);
    const QVector<ParameterInfo> infos = m_parameters->parameters();
    for (int i = 0; i < infos.size(); ++i) {
        auto *const edit = new QLineEdit(this);
        edit->setToolTip(infos[i].meaning);
        form->addRow(infos[i].label, edit);
        connect(edit, &QLineEdit::textEdited, this, [=, this](const QString &text) {
            m_parameters->setParameterValue(i, text);
            MainUI::parameterWasEdited(action, {infos[i].name, text, 1}); // letters are one step
        });
        m_edits << edit;
    }
    PairsPanel::refresh();
}

void PairsPanel::refresh()
{
    for (int i = 0; i < m_edits.size(); ++i) {
        m_edits[i]->setText(m_parameters->parameterValue(i));
    }
}

// The host asks for the actions 0, 1, ... until it gets null. No exception may leave the module.
ActionItem *PairsModule::createAction(int index, unsigned int)
{
    const corvanta::ActionEntry *const entries[] = {&kReadEntry, &kWriteEntry};
    return index < 2 ? entries[index]->makeAction(XMLNode::emptyNode(), nullptr) : nullptr;
}
