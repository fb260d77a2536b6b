// writeDoc: writes texts and images to the markers of Word and PowerPoint templates, one document
// per row.
//
// A template is searched once and used for the rows that name it, until a row names another one. An
// image file is read once, as long as the files together stay below a limit.
#pragma once
#include "actions/shared/template_writer.h"
#include "actions/write_doc/image_store.h"
#include "actions/write_doc/write_doc_params.h"
#include "base/occurrences.h"
#include "codecs/document/document_template.h"
#include "codecs/document/document_text.h"
#include "codecs/document/template_list.h"

#include <map>

namespace corvanta {

extern const ActionEntry kWriteDocEntry;

class ActionWriteDoc final : public ParamAction<ActionWriteDoc, WriteDocParams, TemplateWriter>
{
public:
    ActionWriteDoc(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteDocParams> &paramTable() { return writeDocParamTable(); }
    /// Any file in the folder of relative names: the rows name the documents.
    QVector<TargetUse> targets() const override;
    bool templateMarks(const QString &file, QVector<TemplateMark> *marks) override;

protected:
    void start() override;
    bool step() override;
    void finish() override;
    QString message(TemplateProblem problem, const QString &name) const override;
    QString sourceOf(TemplateProblem problem) const override;

private:
    /// A column of texts or images.
    struct Column
    {
        QString name;
        int input = -1;
        bool isFound = false; ///< a template of this run has its marker
        bool isLeft = false;  ///< a template has its marker where a run does not find it
    };
    /// Everything of one run.
    struct Run
    {
        int output = -1;
        int templateColumn = -1;
        std::vector<Column> texts;
        std::vector<Column> images;
        std::unique_ptr<document::DocumentTemplate> source; ///< of templateName()
        document::TextRules rules;                          ///< of texts in elements
        ImageStore store;
        std::map<QByteArray, qint64> written;   ///< digest of each document's name, and its row
        std::map<QByteArray, qint64> templates; ///< the same of templates, and the first row
        qint64 templateRow = 0;                 ///< first row with the current template
        Occurrences innerBreaks;                ///< line breaks inside text elements
        Occurrences otherKinds;    ///< documents with another extension than their templates
        Occurrences moreTemplates; ///< templates with markers that are left but not named
        qint64 row = 0;            ///< number of the current row, from 1
    };

    // Each returns false after it has failed the run.

    bool findColumns(const OneRow &columns);
    bool findColumn(const OneRow &columns, const QString &name, int *input);
    bool writeRow(const OneRow &row);
    /// Fail for an empty cell; `file` is what it should name.
    bool failNoName(TemplateProblem problem, const QString &file);
    /// Write the document of a row from the current template.
    bool fillDocument(const OneRow &row, const QString &name);
    /// Open the template and search it, unless it is the one of the row before.
    bool useTemplate(const QString &name);
    /// Remember for the end of the run which markers the template has.
    void noteMarkers();
    /// Warn about the markers of the template that no document fills.
    void reportLeftMarkers();
    /// Why a run leaves the marker in the documents, with the remedy; empty if it does not.
    QString whyLeft(const document::TemplateMarker &marker);
    /// Refuse a document that an earlier row has written, or has used as its template.
    bool checkName(const QString &name);
    /// Add the texts of a row as markup, as far as the template needs them.
    bool addTexts(const OneRow &row, document::RowValues &values);
    /// Fail for a text with characters that XML does not have, and count line breaks.
    bool checkCounts(const document::TextCounts &counts, const Column &column);
    /// Read the images that the template needs, or their sizes.
    bool addImages(const OneRow &row, document::RowValues &values, document::RowImages &images);
    /// Fail for a cell that names no file.
    bool failNoImage(const QString &column);
    bool addImage(const QString &file, size_t column, document::RowValues &values,
                  document::RowImages &images);
    /// `row` says which cell names the file.
    bool failImage(const QString &file, const ImageFault &fault, const QString &row);
    bool writeDocument(const document::RowValues &values, const document::RowImages &images);
    document::TemplateOptions templateOptions() const;
    /// Always false, like every failure: the member decides which message it gets.
    bool failDocument(const Fault<opc::Error> &fault);
    /// The cell of the current row in a column, and that cell as the source of a name.
    QString placeOf(const QString &column) const;
    QString rowReason(const QString &column) const;
    /// The column with the name of the file that has the problem.
    const QString &columnOf(TemplateProblem problem) const;
    // Warnings at the end of a run: each names a count and the first case.
    void reportTexts();
    void reportMarkers();

    std::unique_ptr<Run> m_run; // from start() to finish()
};

} // namespace corvanta
