#pragma once
#include <QtGlobal>

#ifdef CORVANTA_CORE_LIBRARY
#define CORVANTA_EXPORT Q_DECL_EXPORT
#else
#define CORVANTA_EXPORT Q_DECL_IMPORT
#endif
