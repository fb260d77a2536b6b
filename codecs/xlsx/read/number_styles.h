// The number formats of a styles part (ECMA-376 part 1, 18.8.10, 18.8.30, 18.8.31, 18.8.45).
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"
#include "codecs/sheet/workbook_reader.h"

#include <QByteArrayView>

#include <vector>

namespace corvanta::xlsx {

/// How each cell format shows numbers, by the index that cells have in their s attribute. Formats
/// after broken markup are missing; they count as General. Threads: pure function.
std::vector<sheet::NumberForm> readNumberForms(QByteArrayView text);

} // namespace corvanta::xlsx
