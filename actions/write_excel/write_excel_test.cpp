// What the parameters of writeExcel and of the level writers report before a run.
#include "actions/write_excel/write_excel.h"
#include "actions/write_json/write_json.h"

#include <gtest/gtest.h>

using namespace corvanta;
using namespace Qt::StringLiterals;

namespace {

/// The problems of an action with these attributes and child elements, as "PARAMETER: TEXT"; those
/// of warnings begin with "(".
template <class Action> QStringList problemsOf(const char *element)
{
    const auto saved = XMLNode::parse(QByteArray(element));
    EXPECT_TRUE(saved) << element;
    const Action action(saved ? *saved : XMLNode(), nullptr);
    QStringList texts;
    for (const ParameterProblem &problem : action.problems()) {
        const bool isWarning = problem.severity == ParameterProblem::Severity::Warning;
        texts << (isWarning ? u"("_s : QString()) + problem.parameter + u": "_s + problem.text;
    }
    return texts;
}

} // namespace

TEST(WriteExcel, ReportsParametersThatARunWouldRejectOrMiss)
{
    const auto problems = problemsOf<ActionWriteExcel>;
    const QString noFormat =
        u"(dateFormat: ToDate lists columns, but without a date format no text is a date"_s;
    EXPECT_EQ(problems("<writeExcel floatToString='%8.2f' dateFormat='d' namedRange='N'>"
                       "<ToDate><s>d</s></ToDate></writeExcel>"),
              QStringList());
    EXPECT_EQ(problems("<writeExcel floatToString=''/>"), QStringList());
    for (const char *format : {"%a", "%g%%", "EUR %g", "%g0", "1%g", "%d"}) {
        const QByteArray element = QByteArray("<writeExcel floatToString='") + format + "'/>";
        EXPECT_EQ(
            problems(element.constData()),
            QStringList{u"floatToString: '%1' is not a format of a floating-point number"_s.arg(
                QLatin1StringView(format))});
    }
    EXPECT_EQ(problems("<writeExcel><ToDate><s>d</s></ToDate></writeExcel>"),
              QStringList{noFormat});
    EXPECT_EQ(problems("<writeExcel isoDates='1'><ToDate><s>d</s></ToDate></writeExcel>"),
              QStringList());
    EXPECT_EQ(problems("<writeExcel dateFormatType='9' dateFormat='d'><ToDate><s>d</s></ToDate>"
                       "</writeExcel>"),
              QStringList{noFormat});
    EXPECT_EQ(problems("<writeExcel dateFormat='d/M/yy'><ToDate><s>d</s></ToDate></writeExcel>"),
              QStringList{u"(dateFormat: 'd/M/yy' has years of two digits, which are read as 1900 "
                          "to 1999"_s});
    const QString name = u"(sheetName: 'a/b' contains one of / \\ ? * [ ] : or a control "
                         "character: the workbook may not open"_s;
    EXPECT_EQ(problems("<writeExcel mode='1' sheetName='a/b'/>"), QStringList{name});
    EXPECT_EQ(problems("<writeExcel mode='2' sheetName='a/b'/>"), QStringList());
    EXPECT_EQ(problems("<writeExcel namedRange='A1'/>"),
              QStringList{u"(namedRange: 'A1' is also a reference to cells: the workbook may not "
                          "open"_s});
    EXPECT_EQ(problemsOf<ActionWriteJSON>("<writeJSON floatToString='%d'/>"),
              QStringList{u"floatToString: '%d' is not a format of a floating-point number"_s});
    EXPECT_EQ(problemsOf<ActionWriteJSON>("<writeJSON/>"), QStringList());
}
