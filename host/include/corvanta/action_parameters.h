// corvanta/action_parameters.h
// What a host can ask an action about its parameters, whatever the action is.
#pragma once
#include "corvanta/export.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// One parameter, as the action declares it.
struct ParameterInfo
{
    enum class Type { Text, Integer, Real, Flag, Strings, Structure };
    enum class File { None, Input, Output };

    QString name; ///< attribute or child element in the saved form
    Type type = Type::Text;
    QString defaultValue; ///< as it would be saved
    QString label;        ///< short, for forms
    QString meaning;      ///< one or two sentences
    QStringList choices;  ///< texts of the values 0, 1, 2, ... of an Integer; empty when it is a number
    File file = File::None;
    bool saveAlways = false;
    bool isMultiLine = false; ///< a Text that may hold line feeds
    qint64 low = 0;           ///< least and greatest value of an Integer
    qint64 high = 0;
};

/// Implemented by actions whose parameters are declared in a table. Threads: the owner's.
class CORVANTA_EXPORT ActionParameters
{
public:
    virtual ~ActionParameters();
    virtual QVector<ParameterInfo> parameters() const = 0;
    /// The value as it would be saved; strings of a list are separated by line feeds, a structure is the XML
    /// of its elements.
    virtual QString parameterValue(int index) const = 0;
    /// Set a value from that form. False when it is not of the parameter's type; nothing changes then.
    virtual bool setParameterValue(int index, const QString &value) = 0;

    /// "text", "integer", ... as `describe` prints it.
    static QString typeName(ParameterInfo::Type type);
};
