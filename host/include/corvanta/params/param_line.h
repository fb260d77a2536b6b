// One line of a parameter table, whatever the struct that holds the values: how a value is read,
// saved, described and set from text. param_table.h builds tables from these lines.
//
// The struct is passed as `void *`, so that this code is compiled once and not for every struct. A
// caller passes a struct of the type that the line was declared for; Param and ParamTable ensure
// it. `defaults` is a default-constructed struct of that type.
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

/// Access to a single value. `params` points to a struct of the type that the table describes. The
/// alternative in a ParamValue is always the one that belongs to the type of the line.
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
    /// The indent of elements inside the indented one.
    Indent deeper() const { return {unit, depth + 1}; }
};
/// Write the blanks, without a line feed.
CORVANTA_EXPORT std::wostream &operator<<(std::wostream &out, const Indent &indent);

/// Access to a list of child elements, each of which has a table of its own.
struct ChildAccess
{
    /// Replace the list by the children `element` of `parent`, which may be an empty node.
    std::function<void(void *params, const XMLNode &parent, const char *element)> read;
    /// Write one element per item, each on lines of its own.
    std::function<void(const void *params, std::wostream &out, const char *element, Indent indent)>
        save;
    /// True if the list equals that of a default-constructed struct, and need not be saved.
    std::function<bool(const void *params)> isDefault;
    /// What each element holds. A function, because the tables may be defined in any order.
    std::function<QVector<ParameterInfo>()> members;
};

/// A line of any type; Param adds the struct's type. Threads: constant after construction.
class CORVANTA_EXPORT ParamLine
{
public:
    /// A single value. Integers get the range of int, see Param::range().
    ParamLine(const char *name, ParameterInfo::Type type, ValueAccess access);
    /// A list of the child elements `element`.
    ParamLine(const char *element, ChildAccess access);

    // Where the value is saved. A value that is neither is a child element.
    bool isAttribute() const { return m_info.place == ParameterInfo::Place::Attribute; }
    bool isContent() const { return m_info.place == ParameterInfo::Place::Content; }

    /// The description of the parameter, with its default.
    ParameterInfo info(const void *defaults) const;
    /// The value as it would be saved; see ActionParameters::parameterValue().
    QString valueText(const void *params) const;
    /// Returns false, and changes nothing, when the text is not of the line's type.
    bool setValueText(void *params, const QString &text) const;

    /// Read the value from the element that holds it. An absent value keeps its value in `params`,
    /// a list of child elements becomes empty. Never fails: any text gives some value.
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
    /// The descriptions of all lines, in saved order.
    QVector<ParameterInfo> infos(const void *defaults) const;
    /// Read the values of all lines from the element that holds them.
    void read(void *params, const XMLNode &node) const;
    /// Write what follows the name and version of an action's element, to its end.
    void saveAction(const void *params, const void *defaults, std::wostream &out,
                    const QString &element, const GlobalParameters *global) const;
    /// Write a child element as a whole.
    void saveChild(const void *params, const void *defaults, std::wostream &out,
                   const char *element, Indent indent) const;

private:
    /// How a child element ends: "/>", or after its content, or after its children on a new line.
    enum class End { Empty, Content, Children };
    End end() const;
    void saveChildren(const void *params, const void *defaults, std::wostream &out,
                      Indent indent) const;
    void saveAttributes(const void *params, const void *defaults, std::wostream &out,
                        const GlobalParameters *global) const;

    std::vector<ParamLine> m_lines;
};

} // namespace corvanta
