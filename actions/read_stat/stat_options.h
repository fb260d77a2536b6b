// What the parameters of readStat mean for one file.
#pragma once
#include "actions/read_stat/read_stat_params.h"
#include "codecs/stat/data_set_reader.h"
#include "io/input/input_file.h"

namespace corvanta {

/// The format of `input`: that of the parameters, or that of its ending.
stat::Format statFormatOf(const ReadStatParams &params, const InputFile &input);

/// The format in which a file is read: that of its content, where it is recognised and the
/// parameters do not name another one; else `named`. The position of `source` changes.
stat::Format statFormatOf(const ReadStatParams &params, ByteSource &source, stat::Format named);

/// What the reader of the data set is asked for; the format is not that of the parameters.
stat::ReadOptions statOptionsOf(const ReadStatParams &params, stat::Format format,
                                const shared::RowRange &range = {});

} // namespace corvanta
