#pragma once

#include <QString>

#include <cstdio>

// `skyvane-cli decode FILE`: every beacon and probe response of a capture file, decoded exactly
// as a live scan result is, printed as one JSON object per line.
namespace app::cli {

// Returns the exit status: 0 when the whole file was read, 1 when it could not be opened or
// read to its end (one line on err says why; the frames before the fault are still printed).
int decodeCapture(const QString& path, std::FILE* out, std::FILE* err);

} // namespace app::cli
