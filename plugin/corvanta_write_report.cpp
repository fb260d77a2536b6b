#include "plugin/corvanta_write_report.h"

/// Hosts of the earlier generation check this text before they load the module.
// NOLINTNEXTLINE(readability-identifier-naming): hosts look the function up by this name
extern "C" Q_DECL_EXPORT const char *qt_plugin_query_verification_data()
{
    return "pattern=QT_PLUGIN_VERIFICATION_DATA\n"
           "version=4.8.7\n"
           "debug=false\n"
           "buildkey=Windows x64 msvc release full-config";
}
