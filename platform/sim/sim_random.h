#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>

// Portable pseudo-randomness for the simulated radio: the same seed gives the same world on
// every standard library, which the distributions of <random> do not promise.
namespace platform::sim {

constexpr std::uint64_t mixBits(std::uint64_t value)
{
    value += 0x9E3779B97F4A7C15ULL;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9ULL;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBULL;
    return value ^ (value >> 31);
}

// A stateless draw: every (seed, key, stream, index) names one value, so a quantity that
// evolves in time is a function of the step, not of how often anyone looked at it.
constexpr std::uint64_t hashOf(std::uint64_t seed, std::uint64_t key, std::uint64_t stream, std::uint64_t index)
{
    return mixBits(mixBits(mixBits(seed ^ mixBits(key)) ^ stream) ^ static_cast<std::uint64_t>(index));
}

// A uniform value in [0, 1).
constexpr double unitOf(std::uint64_t bits)
{
    return static_cast<double>(bits >> 11) * (1.0 / 9007199254740992.0);
}

class SimRandom {
public:
    explicit SimRandom(std::uint64_t seed) : state_(seed) {}

    std::uint64_t next()
    {
        state_ += 0x9E3779B97F4A7C15ULL;
        return mixBits(state_);
    }
    // [0, bound); bound > 0. The modulo bias is irrelevant at these bounds.
    int below(int bound) { return static_cast<int>(next() % static_cast<std::uint64_t>(bound)); }
    int between(int low, int high) { return low + below(high - low + 1); }
    bool chance(double probability) { return unitOf(next()) < probability; }
    template <typename Container>
    const auto& pick(const Container& items)
    {
        return items[static_cast<std::size_t>(below(static_cast<int>(std::size(items))))];
    }

private:
    std::uint64_t state_;
};

} // namespace platform::sim
