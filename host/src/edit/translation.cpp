// The catalogues are resources of this library, made from translations/*.ts.
#include "corvanta/edit/translation.h"

#include "corvanta/log.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <memory>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// A catalogue for all texts except those of the log. What a thread with a LogScope makes is for
/// the log, such as the problem of a value that ends a run, and the rest of the message is English.
class Catalogue final : public QTranslator
{
public:
    QString translate(const char *context, const char *text, const char *disambiguation,
                      int n) const override
    {
        const LogScope::Context log = LogScope::current();
        return log.sink != nullptr || !log.action.isEmpty()
                   ? QString()
                   : QTranslator::translate(context, text, disambiguation, n);
    }
};

/// Returns false if the language has no catalogue of that name. The application owns the
/// catalogue.
bool install(const QLocale &locale, const QString &name, const QString &folder)
{
    auto translator = std::make_unique<Catalogue>();
    if (!translator->load(locale, name, u"_"_s, folder)) {
        return false;
    }
    translator->setParent(QCoreApplication::instance());
    return QCoreApplication::installTranslator(translator.release());
}

} // namespace

bool loadTranslation(const QLocale &locale)
{
    // The buttons and menus of Qt's own dialogs, if they are installed.
    install(locale, u"qtbase"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    return install(locale, u"corvanta"_s, u":/CorvantaCore/translations"_s);
}

} // namespace corvanta
