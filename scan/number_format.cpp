#include "scan/number_format.h"

#include <unicode/numberformatter.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <mutex>
#include <unordered_map>

namespace scan {

namespace {

const icu::number::LocalizedNumberFormatter& formatter()
{
    // ICU's localized number formatters are immutable and safe to share between threads.
    static const icu::number::LocalizedNumberFormatter shared =
        icu::number::NumberFormatter::withLocale(icu::Locale("en_US_POSIX"))
            .precision(icu::number::Precision::maxFraction(1))
            .grouping(UNUM_GROUPING_OFF)
            .roundingMode(UNUM_ROUND_HALFEVEN);
    return shared;
}

struct TextRef {
    const QChar* data = nullptr;
    qsizetype size = 0;
};

// Every text once made stays in memory for the life of the process, so results can be handed
// out as raw-data QStrings whose copies cost no reference counting. The budget bounds the
// memory should a caller feed an endless stream of distinct values.
class InternedTexts {
public:
    static InternedTexts& shared()
    {
        // Never destroyed: strings handed out may outlive every static destructor.
        static auto* texts = new InternedTexts;
        return *texts;
    }

    // Empty reference once the budget is spent.
    TextRef textFor(std::uint32_t bits, float value)
    {
        std::lock_guard lock(mutex_);
        if (const auto it = byBits_.find(bits); it != byBits_.end()) {
            return it->second;
        }
        const QString text = NumberFormat::formatUncached(value);
        if (text.isEmpty() || usedChars_ + static_cast<std::size_t>(text.size()) > budgetChars) {
            return {};
        }
        if (chunkFree_ < static_cast<std::size_t>(text.size())) {
            chunk_ = new QChar[chunkChars];
            chunkFree_ = chunkChars;
        }
        QChar* stored = chunk_ + (chunkChars - chunkFree_);
        std::copy(text.cbegin(), text.cend(), stored);
        chunkFree_ -= static_cast<std::size_t>(text.size());
        usedChars_ += static_cast<std::size_t>(text.size());
        const TextRef ref{stored, text.size()};
        byBits_.emplace(bits, ref);
        return ref;
    }

private:
    static constexpr std::size_t chunkChars = 64 * 1024;
    static constexpr std::size_t budgetChars = 64 * chunkChars;

    std::mutex mutex_;
    std::unordered_map<std::uint32_t, TextRef> byBits_;
    QChar* chunk_ = nullptr;
    std::size_t chunkFree_ = 0;
    std::size_t usedChars_ = 0;
};

// Direct-mapped and trivially destructible, so the per-thread lookup needs no lock and no
// thread-exit bookkeeping; a collision simply costs one visit to the shared table.
struct CacheSlot {
    std::uint32_t bits = 0;
    TextRef text;
};
constexpr int cacheSlotBits = 10;
constexpr std::size_t cacheSlots = std::size_t{1} << cacheSlotBits;

std::size_t slotFor(std::uint32_t bits)
{
    // Fibonacci hashing spreads floats that differ only in their low mantissa bits.
    return static_cast<std::size_t>((bits * 2654435769u) >> (32 - cacheSlotBits));
}

} // namespace

QString NumberFormat::formatUncached(float value)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString text = formatter().formatDouble(static_cast<double>(value), status).toString(status);
    if (U_FAILURE(status)) {
        return {};
    }
    return QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length());
}

QString NumberFormat::format(float value)
{
    thread_local std::array<CacheSlot, cacheSlots> cache{};
    const auto bits = std::bit_cast<std::uint32_t>(value);
    CacheSlot& slot = cache[slotFor(bits)];
    if (slot.text.data == nullptr || slot.bits != bits) {
        const TextRef text = InternedTexts::shared().textFor(bits, value);
        if (text.data == nullptr) {
            return formatUncached(value);
        }
        slot = CacheSlot{bits, text};
    }
    return QString::fromRawData(slot.text.data, slot.text.size);
}

} // namespace scan
