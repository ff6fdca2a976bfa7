#pragma once

#include <QString>

namespace scan {

// The program's one number style (decimal, at most one fractional digit, "." separator, no
// grouping, half-even rounding), produced by ICU behind a per-thread cache because every
// field of every decoded beacon passes through it.
class NumberFormat {
public:
    NumberFormat() = delete;

    static QString format(float value);
    // Straight to ICU, bypassing the cache.
    static QString formatUncached(float value);
};

} // namespace scan
