// Edits the widths of text columns for the writers of SAS files: a table of the text columns of the
// input, each with a width or without one.
//
// Columns that the input does not have are kept and marked. Threads: the GUI thread.
#pragma once
#include "panels/structures/element_table.h"

namespace corvanta {

class TextWidthsEditor final : public ElementTable
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::TextWidthsEditor)

public:
    explicit TextWidthsEditor(const FieldContext &context);
    void refreshContext() override;
    void actionChanged() override;

protected:
    void setValue(const QString &value) override;
    /// Rows of columns without a width have elements without a name.
    bool isReported(const Element &element) const override { return !element.name.isEmpty(); }
    void cellEdited(Element *element) override;

private:
    /// The elements, and a row for each other text column of the input.
    std::vector<Element> withInputColumns(std::vector<Element> elements) const;
    QStringList textColumns() const;
    QString remarkOf(const Element &element, const ParameterInfo &member) const;
    /// Whether the action measures the columns without a width.
    bool isMeasured() const;
};

} // namespace corvanta
