// base/platform/process.h
// What differs between systems about child processes.
#pragma once

class QProcess;

namespace corvanta::platform {

/// Call before `process` is started: its children then end with it, see killWithChildren().
void makeGroup(QProcess &process);
/// Put a started process into the host's job object, where the system has such.
void addToJob(QProcess &process, void *job);
/// End a process that was started after makeGroup(), and all that it started, at once.
void killWithChildren(QProcess &process);

} // namespace corvanta::platform
