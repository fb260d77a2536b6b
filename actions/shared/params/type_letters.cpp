#include "actions/shared/params/type_letters.h"

#include "actions/shared/params/list_problems.h"
#include "base/counted.h"
#include "base/mapped.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Upper case only.
bool isTypeLetter(const QString &text, QStringView letters)
{
    return text.size() == 1 && letters.contains(text[0]);
}

/// For messages: "K, F, U".
QString listOf(QStringView letters)
{
    QStringList list;
    for (const QChar letter : letters) {
        list << letter;
    }
    return list.join(u", "_s);
}

} // namespace

QStringList trimmedParts(const QString &list)
{
    const QStringList parts = list.isEmpty() ? QStringList() : list.split(u',');
    return mapped<QStringList>(parts, [](const QString &part) { return part.trimmed(); });
}

QVector<ParameterProblem> typeProblems(const QString &types, QStringView letters)
{
    const QString text = QCoreApplication::translate("Problems", "'%1' is not a column type (%2)")
                             .arg(u"%1"_s, listOf(letters));
    return listProblems(
        u"types"_s, trimmedParts(types),
        [&](const QString &part) { return isTypeLetter(part, letters); }, text);
}

bool takeTypeLetters(ActionBase &action, const QString &types, qsizetype columns,
                     std::string *letters, QStringView allowed)
{
    const QString name = QString::fromLatin1(action.getTypeName());
    for (const QString &letter : trimmedParts(types)) {
        if (!isTypeLetter(letter, allowed)) {
            return action.fail(u"Error: %1: '%2' is not a column type (%3)\n"_s.arg(
                name, letter, listOf(allowed)));
        }
        *letters += letter[0].toLatin1();
    }
    // A longer list is an error: the columns are not those that the types were written for.
    const auto count = static_cast<qsizetype>(letters->size());
    if (count > columns) {
        return action.fail(u"Error: %1: %2 for %3\n"_s.arg(name, counted(count, u"column type"_s),
                                                           counted(columns, u"column"_s)));
    }
    letters->resize(letters->empty() ? 0 : static_cast<size_t>(columns), 'U');
    return true;
}

bool failOnValue(ActionBase &action, const QString &file, const QString &place,
                 const QString &column, const QString &value, char letter)
{
    return action.fail(u"Error: %1: file '%2', %3, column '%4': '%5' is not of type %6\n"_s.arg(
                           QString::fromLatin1(action.getTypeName()), file, place, column, value,
                           QString(QLatin1Char(letter))),
                       u"only a column of texts (type U) can have this value"_s);
}

} // namespace corvanta
