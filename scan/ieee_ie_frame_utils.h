#pragma once

#include <QString>

namespace scan {

// Look-ups the element parser needs: the text of a rate byte and the name of a cipher suite.
class IEEE_IE_FrameUtils {
public:
    IEEE_IE_FrameUtils() = delete;

    // Two-digit upper-case hex of one rate byte -> rate text, or a null QString when the byte
    // names no rate.
    static QString getBitRate(const QString& hexByte);
    // Same look-up straight from the byte, for the parser's inner loop.
    static const QString& bitRateForByte(unsigned char byte);
    static QString resolveCipherType(int suiteType);
};

} // namespace scan
