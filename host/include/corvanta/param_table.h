// corvanta/param_table.h
// Declares the parameters of an action once; reading, saving, describing and editing follow from
// it.
//
//     struct SheetParams {                 // the default is the initialiser, nowhere else
//         QString fileName;
//         int mode = 0;
//     };
//     const ParamTable<SheetParams> kTable{
//         text("fileName", &SheetParams::fileName).inputFile().meaning("Workbook to read."),
//         number("mode", &SheetParams::mode).choices({"new", "update"}),
//     };
//
// The table's order is the saved order: attributes first, then child elements. A value is saved
// when it differs from its default, or always().
#pragma once
#include "corvanta/action_parameters.h"
#include "corvanta/global_parameters.h"
#include "corvanta/xml_node.h"

#include <QLocale>

#include <functional>
#include <initializer_list>
#include <ostream>
#include <sstream>
#include <type_traits>
#include <variant>
#include <vector>

namespace corvanta {

/// How a child structure reads and saves itself; see structure().
template <class P> struct StructureAccess
{
    std::function<void(P &, const XMLNode &parent)> read;
    std::function<void(const P &, std::wostream &)> write; // nothing when empty
};

/// A text that is the content of a child element; see elementText().
template <class P> struct ElementText
{
    QString P::*member;
};

/// One line of a table.
template <class P> class Param
{
public:
    using Member = std::variant<QString P::*, int P::*, qint64 P::*, double P::*, bool P::*,
                                QStringList P::*, ElementText<P>, StructureAccess<P>>;

    Param(const char *name, ParameterInfo::Type type, Member member)
        : m_name(name)
        , m_member(std::move(member))
    {
        m_info.name = QString::fromLatin1(name);
        m_info.type = type;
    }
    Param &&label(const char *text) &&
    {
        m_info.label = QString::fromUtf8(text);
        return std::move(*this);
    }
    Param &&meaning(const char *text) &&
    {
        m_info.meaning = QString::fromUtf8(text);
        return std::move(*this);
    }
    Param &&choices(std::initializer_list<const char *> texts) &&
    {
        for (const char *text : texts) {
            m_info.choices << QString::fromUtf8(text);
        }
        return std::move(*this);
    }
    Param &&inputFile() &&
    {
        m_info.file = ParameterInfo::File::Input;
        return std::move(*this);
    }
    Param &&outputFile() &&
    {
        m_info.file = ParameterInfo::File::Output;
        return std::move(*this);
    }
    Param &&always() &&
    {
        m_info.saveAlways = true;
        return std::move(*this);
    }
    /// Integers outside are brought to the nearest end when read.
    Param &&range(qint64 low, qint64 high) &&
    {
        m_low = low;
        m_high = high;
        return std::move(*this);
    }
    /// Saved inside the start tag; else as a child element.
    bool isAttribute() const { return m_member.index() < 5; }
    const char *name() const { return m_name; }

    ParameterInfo info(const P &defaults) const
    {
        ParameterInfo info = m_info;
        info.defaultValue = valueText(defaults);
        info.isMultiLine = std::holds_alternative<ElementText<P>>(m_member);
        info.low = m_low;
        info.high = m_high;
        return info;
    }

    void read(P &params, const XMLNode &node) const
    {
        if (const auto *access = std::get_if<StructureAccess<P>>(&m_member)) {
            access->read(params, node);
        } else if (const auto *element = std::get_if<ElementText<P>>(&m_member)) {
            const XMLNode child = node.getChildNode(m_name);
            if (!child.isEmpty()) {
                params.*element->member = child.text();
            }
        } else if (const auto *list = std::get_if<QStringList P::*>(&m_member)) {
            const XMLNode child = node.getChildNode(m_name);
            if (!child.isEmpty()) {
                params.**list = fromXMLSL(child);
            }
        } else if (const char16_t *text = node.getAttribute(m_name)) {
            setScalar(params, text);
        }
    }

    void save(const P &params, const P &defaults, std::wostream &out,
              const GlobalParameters *global) const
    {
        if (const auto *access = std::get_if<StructureAccess<P>>(&m_member)) {
            access->write(params, out);
        } else if (const auto *list = std::get_if<QStringList P::*>(&m_member)) {
            saveList(params.**list, out);
        } else if (m_info.saveAlways || valueText(params) != valueText(defaults)) {
            isAttribute() ? saveAttribute(params, out, global) : saveElementText(params, out);
        }
    }

    QString valueText(const P &params) const
    {
        return std::visit([&](const auto &member) { return textOf(params, member); }, m_member);
    }

    bool setValueText(P &params, const QString &value) const;

private:
    void setScalar(P &params, const char16_t *text) const
    {
        if (const auto *m = std::get_if<QString P::*>(&m_member)) {
            params.**m = QString::fromUtf16(text);
        } else if (const auto *m = std::get_if<int P::*>(&m_member)) {
            params.**m = static_cast<int>(qBound(m_low, xmltol(text, 0), m_high));
        } else if (const auto *m = std::get_if<qint64 P::*>(&m_member)) {
            params.**m = qBound(m_low, xmltol(text, 0), m_high);
        } else if (const auto *m = std::get_if<double P::*>(&m_member)) {
            params.**m = xmltof(text, 0);
        } else if (const auto *m = std::get_if<bool P::*>(&m_member)) {
            params.**m = xmltob(text, 0) != 0;
        }
    }

    static QString textOf(const P &params, QString P::*m) { return params.*m; }
    static QString textOf(const P &params, int P::*m) { return QString::number(params.*m); }
    static QString textOf(const P &params, qint64 P::*m) { return QString::number(params.*m); }
    static QString textOf(const P &params, double P::*m)
    {
        return QString::number(params.*m, 'g', QLocale::FloatingPointShortest);
    }
    static QString textOf(const P &params, bool P::*m)
    {
        return QString(QLatin1Char(params.*m ? '1' : '0'));
    }
    static QString textOf(const P &params, QStringList P::*m)
    {
        return (params.*m).join(QLatin1Char('\n'));
    }
    static QString textOf(const P &params, const ElementText<P> &element)
    {
        return params.*element.member;
    }
    static QString textOf(const P &params, const StructureAccess<P> &access)
    {
        std::wostringstream out;
        access.write(params, out);
        return QString::fromStdWString(out.str());
    }

    void saveAttribute(const P &params, std::wostream &out, const GlobalParameters *global) const
    {
        QString value = valueText(params);
        if (m_info.file != ParameterInfo::File::None && global != nullptr) {
            value = global->contractFile(value);
        }
        ToXMLStringTool tool;
        out << L' ' << m_name << L"='" << tool.toXML(value) << L'\'';
    }

    void saveElementText(const P &params, std::wostream &out) const
    {
        ToXMLStringTool tool;
        out << L"  <" << m_name << L'>' << tool.toXML(valueText(params)) << L"</" << m_name
            << L">\n";
    }

    void saveList(const QStringList &list, std::wostream &out) const
    {
        if (!list.isEmpty() || m_info.saveAlways) {
            out << L"  <" << m_name << L'>';
            toXML(list, out);
            out << L"</" << m_name << L">\n";
        }
    }

    const char *m_name;
    Member m_member;
    ParameterInfo m_info;
    qint64 m_low = std::numeric_limits<int>::min();
    qint64 m_high = std::numeric_limits<int>::max();
};

template <class P> bool Param<P>::setValueText(P &params, const QString &value) const
{
    if (const auto *access = std::get_if<StructureAccess<P>>(&m_member)) {
        const auto parent = XMLNode::parse("<p>" + value.toUtf8() + "</p>");
        if (parent) {
            access->read(params, *parent);
        }
        return static_cast<bool>(parent);
    }
    if (const auto *element = std::get_if<ElementText<P>>(&m_member)) {
        params.*element->member = value;
        return true;
    }
    if (const auto *list = std::get_if<QStringList P::*>(&m_member)) {
        params.**list = value.isEmpty() ? QStringList() : value.split(QLatin1Char('\n'));
        return true;
    }
    bool isNumber = true;
    if (m_info.type == ParameterInfo::Type::Integer || m_info.type == ParameterInfo::Type::Flag) {
        value.toLongLong(&isNumber);
    } else if (m_info.type == ParameterInfo::Type::Real) {
        value.toDouble(&isNumber);
    }
    if (isNumber) {
        setScalar(params, reinterpret_cast<const char16_t *>(value.utf16()));
    }
    return isNumber;
}

template <class P> Param<P> text(const char *name, QString P::*member)
{
    return {name, ParameterInfo::Type::Text, member};
}
template <class P> Param<P> number(const char *name, int P::*member)
{
    return {name, ParameterInfo::Type::Integer, member};
}
template <class P> Param<P> number(const char *name, qint64 P::*member)
{
    return Param<P>(name, ParameterInfo::Type::Integer, member)
        .range(std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max());
}
template <class P> Param<P> real(const char *name, double P::*member)
{
    return {name, ParameterInfo::Type::Real, member};
}
template <class P> Param<P> flag(const char *name, bool P::*member)
{
    return {name, ParameterInfo::Type::Flag, member};
}
/// A string list: one child element of that name.
template <class P> Param<P> strings(const char *name, QStringList P::*member)
{
    return {name, ParameterInfo::Type::Strings, member};
}
/// A text that is the content of the child element of that name; there but empty is an empty text.
template <class P> Param<P> elementText(const char *name, QString P::*member)
{
    return {name, ParameterInfo::Type::Text, ElementText<P>{member}};
}
/// Child elements with a form of their own, which `read` and `write` know. `name` is for people.
template <class P, class T>
Param<P> structure(const char *name, T P::*member, T (*read)(const XMLNode &parent),
                   void (*write)(const T &, std::wostream &))
{
    return {name, ParameterInfo::Type::Structure,
            StructureAccess<P>{
                [=](P &params, const XMLNode &parent) { params.*member = read(parent); },
                [=](const P &params, std::wostream &out) { write(params.*member, out); }}};
}

/// The table: see the top of the file. Threads: constant after construction.
template <class P> class ParamTable
{
public:
    ParamTable(std::initializer_list<Param<P>> params)
        : m_params(params)
    {
    }

    void read(P &params, const XMLNode &node) const
    {
        for (const auto &param : m_params) {
            param.read(params, node);
        }
    }

    /// What follows saveAI(): attributes, then children, then the element's end.
    void save(const P &params, std::wostream &out, const QString &element,
              const GlobalParameters *global) const
    {
        const P defaults;
        std::wostringstream children;
        for (const auto &param : m_params) {
            param.save(params, defaults, param.isAttribute() ? out : children, global);
        }
        if (children.str().empty()) {
            out << L"/>\n";
        } else {
            out << L">\n" << children.str() << L"</" << element.toStdWString() << L">\n";
        }
    }

    QVector<ParameterInfo> infos() const
    {
        const P defaults;
        QVector<ParameterInfo> infos;
        for (const auto &param : m_params) {
            infos << param.info(defaults);
        }
        return infos;
    }
    QString value(const P &params, int index) const { return at(index).valueText(params); }
    bool setValue(P &params, int index, const QString &value) const
    {
        return at(index).setValueText(params, value);
    }

private:
    const Param<P> &at(int index) const { return m_params[static_cast<size_t>(index)]; }
    std::vector<Param<P>> m_params;
};

} // namespace corvanta
