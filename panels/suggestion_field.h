// One line of text with a list of suggestions. Any other text can be typed. Threads: the GUI
// thread.
#pragma once
#include "panels/field_editor.h"

#include <span>

class QComboBox;

namespace corvanta {

class NoteLabel;

/// A text that is a value of a parameter, and what it means.
struct NamedValue
{
    const char *value;   ///< as saved
    const char *meaning; ///< in English; translated in the context "Panels"
};

class SuggestionField : public FieldEditor
{
public:
    using Suggestions = std::function<QStringList()>;
    /// `suggestions` is called by refreshContext(), and by each showValue(), because they may
    /// depend on other members of the element.
    SuggestionField(const FieldContext &context, Suggestions suggestions);
    /// Suggests `values`, which must be static. Their meanings are in the list, and that of the
    /// current text is below it.
    SuggestionField(const FieldContext &context, std::span<const NamedValue> values);
    void refreshContext() override;
    /// Show this text while there is no value.
    void setPlaceholder(const QString &text);

protected:
    QString text() const;
    void setValue(const QString &value) override;

private:
    /// The meaning of a value, translated; empty for any other text.
    QString meaningOf(const QString &text) const;
    void showMeaning();

    Suggestions m_suggestions;
    std::span<const NamedValue> m_values;
    QComboBox *m_box;
    NoteLabel *m_meaning = nullptr; // of the current text; null without `m_values`
};

} // namespace corvanta
