// A module with two actions for files of lines such as "name=value": readPairs and writePairs.
//
// Build it with the CMakeLists.txt of this folder; docs/sdk.md explains every part.
#include <QFile>
#include <QFormLayout>
#include <QLineEdit>

#include <corvanta/action_base.h>
#include <corvanta/failure_reason.h>
#include <corvanta/plugin_interface.h>
#include <corvanta/target_file.h>
#include <corvanta/update_class_widget.h>

using namespace Qt::StringLiterals;
using namespace corvanta;

extern const ActionEntry kReadPairsEntry;
extern const ActionEntry kWritePairsEntry;

struct PairsParams
{
    QString fileName;
    QString separator = u"="_s;
};

// The parameters of both actions. Reading, saving, "describe" and the panel use the table.
static ParamTable<PairsParams> makeTable(Param<PairsParams> file)
{
    return {
        std::move(file).label("File").meaning("File with a pair on each line.").always().required(),
        text("separator", &PairsParams::separator)
            .label("Separator")
            .meaning("Text between the name and the value.")
            .required(),
    };
}

class ReadPairs final : public ParamAction<ReadPairs, PairsParams>
{
public:
    ReadPairs(const XMLNode &saved, GlobalParameters *parameters)
        : ParamAction(kReadPairsEntry, saved, parameters)
    {
    }
    static const ParamTable<PairsParams> &paramTable()
    {
        static const auto table = makeTable(text("fileName", &PairsParams::fileName).inputFile());
        return table;
    }

private:
    bool step() override
    {
        OneRow *const row = getOutputRowForOutputPin(0);
        if (!m_file.isOpen()) {
            m_file.setFileName(expandFile(m_params.fileName));
            if (!m_file.open(QIODevice::ReadOnly)) {
                return fail(
                    u"Error: readPairs: cannot open the file '%1'\n"_s.arg(m_file.fileName()),
                    m_file.errorString());
            }
            row->setColName({u"name"_s, u"value"_s}); // columns of text; see setMetaType()
        }
        while (!m_file.atEnd()) {
            if (yieldRequested()) {
                return true; // to be called again
            }
            const QString line = QString::fromUtf8(m_file.readLine()).remove(u'\n').remove(u'\r');
            const qsizetype at = line.indexOf(m_params.separator);
            if (at < 0) {
                return fail(u"Error: readPairs: '%1' has a line without a separator: %2\n"_s.arg(
                    m_file.fileName(), line.left(80)));
            }
            const QString value = line.mid(at + m_params.separator.size());
            row->setCol(0, bytesFromQString(bufferForOutputPin(0), line.left(at)));
            row->setCol(1, bytesFromQString(bufferForOutputPin(0), value));
            setRowReadyForOutput(0);
        }
        return false; // the end
    }
    void finish() override { m_file.close(); }

    QFile m_file;
};

class WritePairs final : public ParamAction<WritePairs, PairsParams>
{
public:
    WritePairs(const XMLNode &saved, GlobalParameters *parameters)
        : ParamAction(kWritePairsEntry, saved, parameters)
    {
    }
    static const ParamTable<PairsParams> &paramTable()
    {
        static const auto table = makeTable(text("fileName", &PairsParams::fileName).outputFile());
        return table;
    }

private:
    bool step() override
    {
        if (!m_file.isOpen() &&
            !m_file.open(expandOutputFile(m_params.fileName, QString()), {.action = getIdx()})) {
            return fail(u"Error: writePairs: cannot open the file '%1'\n"_s.arg(m_file.target()),
                        failureReason(m_file));
        }
        while (const OneRow *const row = getNextRowFromInPin(0)) {
            if (row->numberOfColumns() < 2) {
                return fail(u"Error: writePairs: the input has less than two columns\n"_s);
            }
            const auto line = (row->text(0) + m_params.separator + row->text(1) + u'\n').toUtf8();
            if (!m_file.write(line.constData(), line.size())) {
                return fail(
                    u"Error: writePairs: cannot write the file '%1'\n"_s.arg(m_file.target()),
                    failureReason(m_file));
            }
            if (yieldRequested()) {
                return true;
            }
        }
        return false;
    }
    // The file appears under its name only when the run is good.
    void finish() override
    {
        if (m_file.isOpen() && runIsGood() && !m_file.commit()) {
            fail(u"Error: writePairs: cannot write the file '%1'\n"_s.arg(m_file.target()),
                 failureReason(m_file));
        }
        m_file.discard(); // without effect after commit()
    }

    TargetFile m_file;
};

// A field for each parameter.
class PairsPanel final : public UpdateClassWidget
{
public:
    PairsPanel(QWidget *parent, ActionItem *action)
        : UpdateClassWidget(parent, action)
    {
        auto *const form = new QFormLayout(this);
        for (const ParameterInfo &info : parameters()->parameters()) {
            auto *const edit = new QLineEdit(this);
            edit->setToolTip(info.meaning);
            connect(edit, &QLineEdit::textEdited, this, [this, i = m_edits.size()](auto &text) {
                editParameter(i, text, 1); // letters are one step
            });
            form->addRow(info.label, edit);
            m_edits << edit;
        }
        PairsPanel::refresh();
    }
    void refresh() override
    {
        for (int i = 0; i < m_edits.size(); ++i) {
            m_edits[i]->setText(parameters()->parameterValue(i));
        }
    }

private:
    QVector<QLineEdit *> m_edits;
};

static constexpr FileFormat kReads[] = {{FileFormat::Read, FileFormat::SeparatedText, "pairs"}};
const ActionEntry kReadPairsEntry = {
    .typeName = "readPairs",
    .description = "Read a file of pairs",
    .icon = ":/Pairs/pairs.svg",
    .fileTypes = "pairs",
    .tags = "Readers",
    .pinsIn = 0,
    .makeAction = makeAction<ReadPairs>,
    .makePanel = makePanel<PairsPanel>,
    .formats = kReads,
};
static constexpr FileFormat kWrites[] = {{FileFormat::Write, FileFormat::SeparatedText, "pairs"}};
const ActionEntry kWritePairsEntry = {
    .typeName = "writePairs",
    .description = "Write a file of pairs",
    .icon = ":/Pairs/pairs.svg",
    .fileTypes = "pairs",
    .tags = "Writers",
    .pinsOut = 0,
    .makeAction = makeAction<WritePairs>,
    .makePanel = makePanel<PairsPanel>,
    .formats = kWrites,
};

static constexpr const ActionEntry *kEntries[] = {&kReadPairsEntry, &kWritePairsEntry};

class PairsModule final : public QObject, public CataloguePlugin
{
    Q_OBJECT
    Q_INTERFACES(CorvantaPluginInterface)
    Q_PLUGIN_METADATA(IID CorvantaPluginInterface_iid FILE "corvanta/plugin_abi.json")

public:
    PairsModule()
        : CataloguePlugin(kEntries, 1.0)
    {
    }
};

#include "pairs.moc"
