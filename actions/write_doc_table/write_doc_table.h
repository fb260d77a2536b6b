// writeDocTable: writes formatted tables to the markers of a Word template, one per input pin.
//
// The rows of each pin become the text of its table (TableSpool). When all pins have ended, the
// template is copied with the tables in place of their markers. The pins follow the tables: there
// is one pin per table, and a user adds and removes both together.
#pragma once
#include "actions/shared/template_writer.h"
#include "actions/write_doc_table/table_spool.h"
#include "actions/write_doc_table/write_doc_table_params.h"
#include "base/occurrences.h"
#include "codecs/document/table_places.h"
#include "codecs/document/table_text.h"
#include "codecs/opc/package_copy.h"

#include <optional>

namespace corvanta {

extern const ActionEntry kWriteDocTableEntry;

class ActionWriteDocTable final
    : public ParamAction<ActionWriteDocTable, WriteDocTableParams, TemplateWriter>
{
public:
    ActionWriteDocTable(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteDocTableParams> &paramTable() { return writeDocTableParamTable(); }
    static int pinsInFor(const WriteDocTableParams &params)
    {
        return static_cast<int>(params.tables.size());
    }
    /// Add a pin and its table, if the action may have another one.
    void addPinIn() override;
    /// Remove the last pin and its table. The first pin stays.
    void removePinIn() override;
    /// Equal markers, and what the template does not have: markers and styles.
    QVector<ParameterProblem> problems() const override;
    /// The names of the markers that a run can find in the template, in its order, each once;
    /// nothing if the template cannot be read. Logs nothing. Not during a run.
    std::optional<QStringList> templateMarkers() const;
    /// The ids of the table styles that a table can have: those of the template, and the one that
    /// the writer adds. The same rules.
    std::optional<QStringList> templateStyles() const;

protected:
    void start() override;
    bool step() override;
    void finish() override;
    QString message(TemplateProblem problem, const QString &name) const override;

private:
    /// Everything of one run.
    struct Run
    {
        QString output; ///< expanded
        std::vector<QByteArray> markers;
        std::vector<TableSpool> tables;          ///< those of the pins that have ended
        std::optional<document::TableText> text; ///< of the pin that is read
        int pin = 0;                             ///< that is read, from 0
        qint64 rows = 0;                         ///< of that pin
        Occurrences innerBreaks;                 ///< line breaks inside text elements, of all pins
        bool isRead = false;                     ///< all pins have ended
    };

    /// A graph may have more tables than linked pins: a pin without a link has no rows. It may also
    /// link more pins than it has tables: those get the default one.
    int tableCount() const;
    DocTable tableOf(int pin) const;

    enum class Pin { Ended, Interrupted, Failed };
    /// Read the rows of the current pin, until they end or the engine interrupts the step.
    Pin readPin();

    // Each returns false after it has failed the run.

    /// Needs the pin's columns, so that it waits for the first row or the end of the pin.
    bool beginTable(const OneRow &columns);
    /// The widths that the pin's table gives; warns of those that cannot be used.
    std::vector<int> widthsFor(const OneRow &columns);
    /// Write the names of the columns.
    bool putHeader(const OneRow &columns);
    bool putRow(const OneRow &row);
    /// Fail for a cell of the current row with characters that XML does not have, and count line
    /// breaks.
    bool checkCounts(const document::TextCounts &counts, const QString &column);
    bool endTable();
    /// Move what was written to the table of the pin.
    bool spool();
    /// Add the marker of the pin, unless an earlier pin has it.
    bool checkMarker();
    void reportTexts();

    /// Copy the template with all tables, after the last row.
    bool writeDocument();
    /// Define the style that every document has.
    bool editStyles(opc::PackageCopy &copy);
    bool readBody(opc::PackageCopy &copy, QByteArray *body);
    /// Read a part whose text is changed.
    bool readPart(opc::PackageCopy &copy, const QByteArray &part, QByteArray *text);
    bool writeBody(const QByteArray &body, const std::vector<document::TablePlace> &places);
    /// Copy the spool of a table, by its index, into the open member.
    bool writeTable(int table);
    /// The body in which the markers are searched, and their places in it.
    QByteArray searchedBody(const QByteArray &body, const std::vector<QByteArray> &markers) const;
    std::vector<document::TablePlace> findPlaces(const QByteArray &body,
                                                 const std::vector<QByteArray> &markers) const;
    // What the template does not have; each text is for a warning, or for problems().
    QStringList missingStyles(QByteArray styles) const;
    static QStringList missingMarkers(const QByteArray &body,
                                      const std::vector<QByteArray> &markers,
                                      const std::vector<document::TablePlace> &places);
    void addTemplateProblems(const std::vector<QByteArray> &markers,
                             QVector<ParameterProblem> *found) const;
    void warnEach(const QStringList &texts);
    // Warn of markers without a place, and of places that lose something.
    void reportLeft(const QByteArray &body, const std::vector<document::TablePlace> &places);
    // Also of those in headers, notes and the like.
    void reportOtherParts();
    void reportPlaces(const std::vector<document::TablePlace> &places);

    std::unique_ptr<Run> m_run; // from start() to finish()
};

} // namespace corvanta
