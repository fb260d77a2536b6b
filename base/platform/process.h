// Ending child processes together with their own children, which systems do in different ways.
#pragma once
#include <cstddef>

class QProcess;

namespace corvanta::platform {

/// Put `process` and its future children into a process group of their own. Call before it starts;
/// killWithChildren() needs it.
void makeGroup(QProcess &process);
/// One of `parts` equal parts (0-based) of the processors that this program may use.
struct ProcessorShare
{
    size_t part = 0;
    size_t parts = 1;
};
/// The same, and send the process a request to end when this program ends, in whatever way. The
/// process runs on its share of the processors, where the system can do that and each part has
/// one at least.
void makeGroupThatEndsWithUs(QProcess &process, ProcessorShare share = {});
/// Request the end of a process and of all processes that it started. Does not wait. Call
/// makeGroup() before the process starts.
void terminateWithChildren(QProcess &process);
/// Add a started process to the host's job object. Does nothing on systems without job objects.
void addToJob(QProcess &process, void *job);
/// Kill a process and all processes that it started, and wait until it has ended. Call makeGroup()
/// before the process starts.
void killWithChildren(QProcess &process);

} // namespace corvanta::platform
