// The catalogues are resources of this library, made from translations/*.ts.
#include "corvanta/edit/translation.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

#include <memory>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Returns false if the language has no catalogue of that name. The application owns the
/// catalogue.
bool install(const QLocale &locale, const QString &name, const QString &folder)
{
    auto translator = std::make_unique<QTranslator>();
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
