#include "modules/module_file.h"

#include "corvanta/plugin_interface.h"

#include <QJsonObject>
#include <QPluginLoader>

#include <cerrno>
#include <new>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Why the metadata of a module does not fit; empty if it does.
QString metadataProblem(const QJsonObject &metadata)
{
    const QString interface = metadata.value("IID"_L1).toString();
    if (interface != QLatin1StringView(CorvantaPluginInterface_iid)) {
        return u"its interface is '%1' instead of '%2'"_s.arg(
            interface, QLatin1StringView(CorvantaPluginInterface_iid));
    }
    // CMake sets the number from plugin_abi.json, which modules have as their metadata.
    constexpr int kAbi = CORVANTA_PLUGIN_ABI;
    const QJsonValue abi = metadata.value("MetaData"_L1).toObject().value("abi"_L1);
    if (abi.toInt(-1) == kAbi) {
        return {};
    }
    const QString its = abi.isDouble() ? u"is built for plug-in ABI %1"_s.arg(abi.toInt(-1))
                                       : u"does not name its plug-in ABI"_s;
    return u"it %1, and this host has ABI %2 (build the module with the headers of this host)"_s
        .arg(its, QString::number(kAbi));
}

} // namespace

Result<CorvantaPluginInterface *, ModuleError> openModule(const QString &file)
{
    QPluginLoader loader(file);
    // Never unload a module: actions and their icons may exist until the program ends. Resolve all
    // symbols now: a missing function would otherwise end the program when it is called.
    loader.setLoadHints(QLibrary::PreventUnloadHint | QLibrary::ResolveAllSymbolsHint);
    // Without metadata the file is not a plug-in at all, and the loader knows why.
    const QJsonObject metadata = loader.metaData();
    if (const QString problem = metadata.isEmpty() ? QString() : metadataProblem(metadata);
        !problem.isEmpty()) {
        return Fault{ModuleError::Refused, problem};
    }
    if (auto *const plugin = qobject_cast<CorvantaPluginInterface *>(loader.instance())) {
        return plugin;
    }
    if (loader.errorString().contains(qt_error_string(ENOMEM))) {
        throw std::bad_alloc(); // its actions would seem to be unknown
    }
    return Fault{ModuleError::Refused, loader.errorString()};
}

} // namespace corvanta
