// One line of a parameter table, whatever the struct that holds the values: how a value is read,
// saved, described and set from text. param_table.h builds tables from these lines.
#pragma once
#include "corvanta/action_parameters.h"
#include "corvanta/global_parameters.h"
#include "corvanta/xml_node.h"

#include <functional>
#include <iosfwd>
#include <variant>
#include <vector>

namespace corvanta {

/// The value of one line. Whole numbers and choices are qint64.
using ParamValue = std::variant<QString, qint64, double, bool, QStringList>;

/// Access to a single value. `params` points to a struct of the type that the table describes.
struct ValueAccess
{
    std::function<ParamValue(const void *params)> get;
    std::function<void(void *params, const ParamValue &value)> set;
};

/// Indent of saved child elements: `unit`, `depth` times.
struct Indent
{
    const char *unit = "  ";
    int depth = 1;
    Indent deeper() const { return {unit, depth + 1}; }
};
CORVANTA_EXPORT std::wostream &operator<<(std::wostream &out, const Indent &indent);

/// Access to a list of child elements, each of which has a table of its own.
struct ChildAccess
{
    /// Replace the list by the children `element` of `parent`, which may be an empty node.
    std::function<void(void *params, const XMLNode &parent, const char *element)> read;
    std::function<void(const void *params, std::wostream &out, const char *element, Indent indent)>
        save;
    std::function<bool(const void *params)> isDefault;
    std::function<QVector<ParameterInfo>()> members;
};

/// Threads: constant after construction.
class CORVANTA_EXPORT ParamLine
{
public:
    ParamLine(const char *name, ParameterInfo::Type type, ValueAccess access);
    /// A list of the child elements `element`.
    ParamLine(const char *element, ChildAccess access);

    bool isAttribute() const { return m_info.place == ParameterInfo::Place::Attribute; }
    bool isContent() const { return m_info.place == ParameterInfo::Place::Content; }

    ParameterInfo info(const void *defaults) const;
    /// The value as it would be saved; see ActionParameters::parameterValue().
    QString valueText(const void *params) const;
    /// Returns false, and changes nothing, when the text is not of the line's type.
    bool setValueText(void *params, const QString &text) const;

    /// Read the value from the element that holds it. An absent value is left as it is.
    void read(void *params, const XMLNode &node) const;
    /// Write the value unless it equals the default. File names are contracted if `global` is set.
    void save(const void *params, const void *defaults, std::wostream &out, Indent indent,
              const GlobalParameters *global) const;

protected:
    ParameterInfo m_info;
    const char *m_wrapper = nullptr;    ///< element around the child elements
    const char *m_indentUnit = nullptr; ///< unless that of the parent

private:
    bool isList() const { return m_info.type == ParameterInfo::Type::Strings; }
    bool isStructure() const { return m_info.type == ParameterInfo::Type::Structure; }
    void readText(void *params, const char16_t *text) const;
    void readElement(void *params, const XMLNode &element) const;
    void saveAttribute(const void *params, std::wostream &out,
                       const GlobalParameters *global) const;
    void saveElement(const void *params, std::wostream &out, Indent indent) const;
    void saveStructure(const void *params, std::wostream &out, Indent indent) const;
    void saveContent(const void *params, std::wostream &out) const;

    const char *m_name;     ///< of the attribute or element
    ValueAccess m_value;    ///< of all types but Structure
    ChildAccess m_children; ///< of a Structure
};

/// The lines of a table, in saved order. Threads: constant after construction.
class CORVANTA_EXPORT ParamLines
{
public:
    explicit ParamLines(std::vector<ParamLine> lines);

    const ParamLine &at(int index) const { return m_lines[static_cast<size_t>(index)]; }
    QVector<ParameterInfo> infos(const void *defaults) const;
    void read(void *params, const XMLNode &node) const;
    /// Write what follows the name and version of an action's element, to its end.
    void saveAction(const void *params, const void *defaults, std::wostream &out,
                    const QString &element, const GlobalParameters *global) const;
    /// Write a child element as a whole.
    void saveChild(const void *params, const void *defaults, std::wostream &out,
                   const char *element, Indent indent) const;

private:
    enum class End { Empty, Content, Children };
    End end() const;
    void saveChildren(const void *params, const void *defaults, std::wostream &out,
                      Indent indent) const;
    void saveAttributes(const void *params, const void *defaults, std::wostream &out,
                        const GlobalParameters *global) const;

    std::vector<ParamLine> m_lines;
};

} // namespace corvanta
