// cli/commands.h
// The commands of corvanta; each takes the words behind its name and answers the exit status.
#pragma once
#include <QStringList>

int runCommand(const QStringList &words);
int checkCommand(const QStringList &words);
int actionsCommand(const QStringList &words);
int describeCommand(const QStringList &words);
int convertCommand(const QStringList &words);
int headCommand(const QStringList &words);
int schemaCommand(const QStringList &words);
