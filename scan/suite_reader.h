#pragma once

#include "scan/byte_reader.h"
#include "scan/element_ids.h"

#include <cstdint>
#include <optional>

namespace scan {

// One cipher or AKM suite of an RSN or WPA element: an organisation identifier and a type.
struct Suite {
    std::uint8_t oui[3] = {0, 0, 0};
    std::uint8_t type = 0;

    bool hasOui(const std::uint8_t (&expected)[3]) const
    {
        return oui[0] == expected[0] && oui[1] == expected[1] && oui[2] == expected[2];
    }
};

// Reads the suites of an RSN or WPA element in order: single suites, and "count, suites" lists.
// A list cut short still hands over the complete suites before the cut and then reads nothing
// more, because real access points ship truncated elements whose leading suites are sound.
class SuiteReader {
public:
    // bytes: the element body (or more); start: where the first suite or list begins.
    SuiteReader(ByteReader bytes, std::size_t start) : bytes_(bytes)
    {
        if (!bytes_.skip(start))
            bytes_.exhaust();
    }

    std::optional<Suite> suite()
    {
        if (!bytes_.has(bytes_.position(), 4)) {
            bytes_.exhaust();
            return std::nullopt;
        }
        const std::size_t p = bytes_.position();
        Suite s{{bytes_[p], bytes_[p + 1], bytes_[p + 2]}, bytes_[p + 3]};
        bytes_.skip(4);
        return s;
    }

    // Hands each suite of the next list to onSuite; false when the count or a suite is missing.
    template <typename OnSuite>
    bool list(OnSuite onSuite)
    {
        const auto count = bytes_.le16();
        if (!count) {
            bytes_.exhaust();
            return false;
        }
        for (unsigned i = 0; i < *count; ++i) {
            const auto s = suite();
            if (!s)
                return false;
            onSuite(*s);
        }
        return true;
    }

private:
    ByteReader bytes_;
};

} // namespace scan
