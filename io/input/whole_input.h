// Reads inputs to their end: into memory for decoders that need jumps, or only to verify them.
#pragma once
#include "base/result.h"
#include "io/input/run_input.h"

#include <memory>

namespace corvanta {

enum class WholeInputError : quint8 { ReadFailed, TooLarge };

/// A source of the same bytes that seeks at no cost: `input` itself if it is a plain file, else its
/// unpacked content in memory. Pipes and devices are also read into memory. The detail of a fault
/// is the reason in words. Errors: ReadFailed; TooLarge above limits::kMemberBytes.
Result<std::unique_ptr<ByteSource>, WholeInputError> randomAccess(std::unique_ptr<RunInput> input);

/// Why the system refused a read of a source from randomAccess(), in words; empty if it refused
/// none. Threads: any.
QString readFailure(const ByteSource &source);

/// Read and discard the rest of `source`. Packed inputs verify their checksum at the end; false
/// when that or a read fails.
bool readToEnd(ByteSource &source);

} // namespace corvanta
