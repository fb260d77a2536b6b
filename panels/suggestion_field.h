// One line of text with a list of suggestions. Any other text can be typed. Threads: the GUI
// thread.
#pragma once
#include "panels/field_editor.h"

class QComboBox;

namespace corvanta {

class SuggestionField : public FieldEditor
{
public:
    using Suggestions = std::function<QStringList()>;
    /// `suggestions` is called by refreshContext(), and by each showValue(), because they may
    /// depend on other members of the element.
    SuggestionField(const FieldContext &context, Suggestions suggestions);
    void refreshContext() override;
    /// Show this text while there is no value.
    void setPlaceholder(const QString &text);

protected:
    QString text() const;
    void setValue(const QString &value) override;

private:
    Suggestions m_suggestions;
    QComboBox *m_box;
};

} // namespace corvanta
