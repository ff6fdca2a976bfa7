#pragma once

#include "app/backend/backend_chooser.h"

#include <QString>
#include <QStringList>

#include <cstdio>
#include <optional>

// Reading skyvane-cli's options and writing its output, shared by all its commands.
namespace app::cli {

// True when argument is "--name" or "--name=VALUE".
bool matchesOption(const QString& argument, const QString& name);
// The value of "--name VALUE" or "--name=VALUE"; advances i past what it used.
std::optional<QString> optionValue(const QStringList& arguments, qsizetype& i, const QString& name, QString* error);
// text as a whole number above zero; nullopt with *error naming the option when it is not.
std::optional<long long> positiveNumber(const QString& text, const QString& name, QString* error);

enum class BackendOptionResult { NotABackendOption, Taken, Invalid };
// Takes one backend option (--interface, --simulate[=N], --seed, --capture) into options.
BackendOptionResult takeBackendOption(const QStringList& arguments, qsizetype& i, app::BackendOptions& options,
                                      QString* error);
// nullopt when the backend options fit together, else why not.
std::optional<QString> backendOptionsConflict(const app::BackendOptions& options);
// The same as a parse step: false with *error saying why when the options do not fit together.
bool backendOptionsFit(const app::BackendOptions& options, QString* error);

// The options that make another run of skyvane-cli (the channel-information tool) see the same radio.
QStringList backendArguments(const app::BackendOptions& options);

// The first argument that is neither a backend option nor its value, empty when there is none:
// backend options may come before any command, and a command's own values (scan --ssid listen)
// must never be taken for another command.
QString commandWord(const QStringList& arguments);

// UTF-8, flushed at once so a reader at the other end of a pipe sees each line as it comes.
void writeText(std::FILE* stream, const QString& text);
void writeBytes(std::FILE* stream, const QByteArray& bytes);

// The backend the options name, or nullopt after telling err why it cannot be had. Its status
// sentence (a simulated radio, a replayed capture) goes to err too unless reportStatus is false:
// the user must always be able to tell what they are looking at.
std::optional<app::Backend> openBackend(const app::BackendOptions& options, std::FILE* err, bool reportStatus = true);

} // namespace app::cli
