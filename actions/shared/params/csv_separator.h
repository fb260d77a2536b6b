// The separator parameter of readCSV and writeCSV. The codec compares bytes, so the separator must
// be one byte in UTF-8, and it must differ from the bytes that structure a record.
#pragma once
#include "corvanta/action_parameters.h"

#include <QCoreApplication>
#include <QString>

#include <optional>

namespace corvanta {

/// The separator that a parameter text names: one ASCII character other than a quote and a line
/// end; "\\t" names the tab. Returns nothing for any other text.
inline std::optional<char> csvSeparator(const QString &parameter)
{
    if (parameter == QStringLiteral("\\t")) {
        return '\t';
    }
    const bool isUsable = parameter.size() == 1 && parameter[0].unicode() < 0x80 &&
                          !QStringLiteral("\"\r\n").contains(parameter[0]);
    return isUsable ? std::optional(parameter[0].toLatin1()) : std::nullopt;
}

/// The problem of a separator with which a run fails; none for a usable one.
inline QVector<ParameterProblem> separatorProblems(const QString &parameter)
{
    if (csvSeparator(parameter)) {
        return {};
    }
    return {
        {QStringLiteral("separator"),
         QCoreApplication::translate("Problems", "the separator '%1' is not one ASCII character")
             .arg(parameter)}};
}

} // namespace corvanta
