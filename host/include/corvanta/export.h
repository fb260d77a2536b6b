// Marks what the host library exports. All other symbols of the library are hidden.
#pragma once
#include <QtGlobal>

#ifdef CORVANTA_CORE_LIBRARY
#define CORVANTA_EXPORT Q_DECL_EXPORT
#else
#define CORVANTA_EXPORT Q_DECL_IMPORT
#endif
