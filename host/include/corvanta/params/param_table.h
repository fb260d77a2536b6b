// Declares the parameters of an action once; reading, saving, describing and editing follow from
// it.
//
//     enum class SheetMode { New, Update };
//     struct SheetParams {                 // the default is the initialiser, nowhere else
//         QString fileName;
//         SheetMode mode = SheetMode::New;
//     };
//     const ParamTable<SheetParams> kTable{
//         text("fileName", &SheetParams::fileName).inputFile().meaning("Workbook to read."),
//         choice("mode", &SheetParams::mode,
//                {{SheetMode::New, "new"}, {SheetMode::Update, "update"}}),
//     };
//
// The table's order is the saved order: attributes first, then child elements. A value is saved
// when it differs from its default, or always(). Child elements have tables of their own, see
// param_children.h. A graph that was saved without a parameter gets its current default, so a
// default is never changed without adjustDefaults() (ParamAction) for older graphs.
#pragma once
#include "corvanta/params/param.h"

#include <initializer_list>
#include <vector>

namespace corvanta {

/// Lines that are next to each other in several tables, for structs that share a base.
template <class P> using ParamGroup = std::vector<Param<P>>;

/// The table: see the top of the file. Threads: constant after construction.
template <class P> class ParamTable
{
public:
    /// A line or a group of lines.
    class Part
    {
    public:
        Part(Param<P> line) // NOLINT(google-explicit-constructor): a table lists lines
            : m_lines{std::move(line)}
        {
        }
        Part(ParamGroup<P> lines) // NOLINT(google-explicit-constructor): as above
            : m_lines(lines.begin(), lines.end())
        {
        }
        const std::vector<ParamLine> &lines() const { return m_lines; }

    private:
        std::vector<ParamLine> m_lines;
    };

    ParamTable(std::initializer_list<Part> parts)
        : m_lines(linesOf(parts))
    {
    }

    /// Read all parameters from the element that holds them. Absent attributes keep their value in
    /// `params`; texts that are not numbers are read as 0, and numbers are limited to their range.
    void read(P &params, const XMLNode &node) const { m_lines.read(&params, node); }
    /// Write what follows the name and version of the action's element, to its end.
    void save(const P &params, std::wostream &out, const QString &element,
              const GlobalParameters *global) const
    {
        const P defaults;
        m_lines.saveAction(&params, &defaults, out, element, global);
    }
    /// Write a child element as a whole.
    void saveChild(const P &params, std::wostream &out, const char *element, Indent indent) const
    {
        const P defaults;
        m_lines.saveChild(&params, &defaults, out, element, indent);
    }
    /// The descriptions of all parameters, in saved order.
    QVector<ParameterInfo> infos() const
    {
        const P defaults;
        return m_lines.infos(&defaults);
    }
    // By index in infos(), which must exist; see ActionParameters::parameterValue().
    QString value(const P &params, int index) const { return m_lines.at(index).valueText(&params); }
    bool setValue(P &params, int index, const QString &value) const
    {
        return m_lines.at(index).setValueText(&params, value);
    }

private:
    static std::vector<ParamLine> linesOf(std::initializer_list<Part> parts)
    {
        std::vector<ParamLine> lines;
        for (const Part &part : parts) {
            lines.insert(lines.end(), part.lines().begin(), part.lines().end());
        }
        return lines;
    }

    ParamLines m_lines;
};

} // namespace corvanta
