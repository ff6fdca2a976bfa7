#pragma once

#include "app/backend/backend_chooser.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <cstdio>
#include <optional>

// skyvane-cli's wireless commands on the chosen backend: -s (networks in range), -s -x (the
// same as a property list), -I (the current link) and watch (-s again and again).
namespace app::cli {

enum class ToolAction { ScanListing, ScanPropertyList, LinkReport, Watch };

struct ToolRequest {
    app::BackendOptions backend;
    ToolAction action = ToolAction::ScanListing;
    std::chrono::milliseconds watchInterval{5000};
    std::optional<int> watchCount;  // until stopped when absent
    bool explain = false;           // -I: say where each value came from
};

// nullopt with *error naming the offending argument when the arguments form no request.
std::optional<ToolRequest> parseToolArguments(const QStringList& arguments, QString* error);

// The usage lines of the wireless commands, for skyvane-cli's help.
QString toolUsage();

// Exit status 0, or 1 when the backend could not be set up or a scan found nothing but an error.
int runToolRequest(const ToolRequest& request, std::FILE* out, std::FILE* err);

} // namespace app::cli
