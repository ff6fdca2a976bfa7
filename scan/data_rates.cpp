#include "scan/scaned_result_info.h"
#include "scan/scanner_utils.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace scan {

namespace {

float baseValue(std::int64_t streams, int channelWidth)
{
    static constexpr std::array<std::array<float, 4>, 4> table = {{
        {7.2F, 15.0F, 32.5F, 65.0F},
        {14.4F, 30.0F, 65.0F, 130.0F},
        {21.7F, 45.0F, 97.5F, 195.0F},
        {28.9F, 60.0F, 130.0F, 260.0F},
    }};
    int column = -1;
    switch (channelWidth) {
    case 20:
        column = 0;
        break;
    case 40:
        column = 1;
        break;
    case 80:
        column = 2;
        break;
    case 160:
        column = 3;
        break;
    default:
        break;
    }
    if (streams < 1 || streams > 4 || column < 0) {
        return 7.2F;
    }
    return table[static_cast<std::size_t>(streams - 1)][static_cast<std::size_t>(column)];
}

// Leading integer of a text, as a decimal conversion that stops at the first non-digit:
// "54(B)" and "5.5" give 54 and 5, a text without digits gives 0.
std::int64_t leadingInteger(const QString& text)
{
    const QChar* c = text.constData();
    const QChar* const end = c + text.size();
    while (c != end && c->isSpace()) {
        ++c;
    }
    bool negative = false;
    if (c != end && (*c == u'-' || *c == u'+')) {
        negative = *c == u'-';
        ++c;
    }
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    std::int64_t value = 0;
    for (; c != end && *c >= u'0' && *c <= u'9'; ++c) {
        const int digit = c->unicode() - u'0';
        if (value > (largest - digit) / 10) {
            return negative ? std::numeric_limits<std::int64_t>::min() : largest;
        }
        value = value * 10 + digit;
    }
    return negative ? -value : value;
}

// MCS 6 at 80 MHz and MCS 9 at 160 MHz do not exist for three streams.
bool skipped(int step, int channelWidth, std::int64_t streams)
{
    return streams == 3 && ((step == 6 && channelWidth == 80) || (step == 10 && channelWidth == 160));
}

// The computed rate texts in the order they are first emitted, without repeats.
std::vector<QString> computeRates(int channelWidth, std::int64_t streams, bool shortGI)
{
    std::vector<QString> texts;
    const int top = channelWidth >= 80 ? 10 : 8;
    for (std::int64_t s = 1; s <= streams; ++s) {
        const float b = baseValue(s, channelWidth);
        float acc = 0.0F;
        for (int n = 1; n <= top; ++n) {
            if (n == 5 || n == 6 || n == 9) {
                acc = acc + 2 * b;
            } else if (n == 10) {
                acc = static_cast<float>(acc + (b + b * 33.33 / 100));
            } else {
                acc = acc + b;
            }
            if (skipped(n, channelWidth, s)) {
                continue;
            }
            const float rate = shortGI ? acc : acc + acc * (-10) / 100;
            QString text = ScannerUtils::formatNumber(rate);
            if (std::find(texts.begin(), texts.end(), text) == texts.end()) {
                texts.push_back(std::move(text));
            }
        }
    }
    return texts;
}

// Every beacon needs these lists and formatting dominates their cost, so the usual widths
// and stream counts are formatted once per process.
const std::vector<QString>& cachedRates(int channelWidth, std::int64_t streams, bool shortGI)
{
    static constexpr std::array<int, 4> widths = {20, 40, 80, 160};
    using Table = std::array<std::array<std::array<std::vector<QString>, 2>, 4>, 4>;
    static const Table table = [] {
        Table built;
        for (std::size_t w = 0; w < widths.size(); ++w) {
            for (std::size_t s = 0; s < 4; ++s) {
                for (std::size_t gi = 0; gi < 2; ++gi) {
                    built[w][s][gi] = computeRates(widths[w], static_cast<std::int64_t>(s + 1), gi == 1);
                }
            }
        }
        return built;
    }();
    const auto w = static_cast<std::size_t>(std::find(widths.begin(), widths.end(), channelWidth) - widths.begin());
    return table[w][static_cast<std::size_t>(streams - 1)][shortGI ? 1 : 0];
}

bool isCached(int channelWidth, std::int64_t streams)
{
    return streams >= 1 && streams <= 4 &&
           (channelWidth == 20 || channelWidth == 40 || channelWidth == 80 || channelWidth == 160);
}

// An access point sends the same rates in every beacon, so a completed list is remembered by
// everything it was made from; a capture of thousands of beacons then completes each list once.
struct CompletionInput {
    QStringList advertised;
    int channelWidth;
    std::int64_t streams;
    bool shortGI;
    bool operator==(const CompletionInput&) const = default;
};

size_t qHash(const CompletionInput& input, size_t seed = 0)
{
    return qHashMulti(seed, qHashRange(input.advertised.cbegin(), input.advertised.cend()), input.channelWidth,
                      input.streams, input.shortGI);
}

QStringList completeRates(const QStringList& advertised, int channelWidth, std::int64_t streams, bool shortGI);

const QStringList& rememberedCompletion(const QStringList& advertised, int channelWidth, std::int64_t streams,
                                        bool shortGI)
{
    // Bounded: a hostile capture of ever-new rate lists cannot grow it without limit.
    constexpr qsizetype capacity = 4096;
    thread_local QHash<CompletionInput, QStringList> remembered;
    CompletionInput input{advertised, channelWidth, streams, shortGI};
    if (const auto hit = remembered.constFind(input); hit != remembered.cend())
        return *hit;
    if (remembered.size() >= capacity)
        remembered.clear();
    return *remembered.insert(std::move(input), completeRates(advertised, channelWidth, streams, shortGI));
}

QStringList completeRates(const QStringList& advertised, int channelWidth, std::int64_t streams, bool shortGI)
{
    QStringList list = advertised;
    if (streams >= 1) {
        std::vector<QString> uncached;
        const std::vector<QString>* computed = &uncached;
        if (isCached(channelWidth, streams)) {
            computed = &cachedRates(channelWidth, streams, shortGI);
        } else {
            uncached = computeRates(channelWidth, streams, shortGI);
        }
        // Computed texts are already unique, so only the entries that came before need checking.
        const qsizetype before = list.size();
        for (const QString& text : *computed) {
            const auto earlier = list.cbegin();
            const bool present = std::any_of(earlier, earlier + before, [&text](const QString& other) {
                return other.size() == text.size() && other == text;
            });
            if (!present) {
                list.append(text);
            }
        }
    }

    // Sorting (key, position) pairs is a stable sort by key without copying the texts.
    std::vector<std::pair<std::int64_t, qsizetype>> order;
    order.reserve(static_cast<std::size_t>(list.size()));
    for (qsizetype i = 0; i < list.size(); ++i) {
        order.emplace_back(leadingInteger(list.at(i)), i);
    }
    std::sort(order.begin(), order.end());
    QStringList sorted;
    sorted.reserve(list.size());
    QString* items = list.data();
    for (const auto& entry : order) {
        sorted.append(std::move(items[entry.second]));
    }
    return sorted;
}

}  // namespace

float ScanedResultInfo::getBaseValueForDataRate(std::int64_t streams) const
{
    return baseValue(streams, channelWidth);
}

void ScanedResultInfo::populateMaxDataRate()
{
    if (!supportedDataRates) {
        supportedDataRates = QStringList();
        return;
    }
    bool shortGI = false;
    if (channelWidth == 20) {
        shortGI = shortGIFor24MhzEnabled != 0;
    } else if (channelWidth >= 21) {
        shortGI = shortGIFor40MhzEnabled != 0;
    }
    // Every stream beyond four uses the same base rate, so a fifth one adds the last new texts
    // and more add nothing; the cap keeps a nonsense count from looping for ever.
    const std::int64_t streams = std::min<std::int64_t>(numberOfStreams, 5);

    *supportedDataRates = rememberedCompletion(*supportedDataRates, channelWidth, streams, shortGI);
}

QString ScanedResultInfo::getMaxDataRate()
{
    if (!maxDataRate.isEmpty() && leadingInteger(maxDataRate) != -1) {
        return maxDataRate;
    }
    populateMaxDataRate();
    if (!supportedDataRates->isEmpty()) {
        maxDataRate = supportedDataRates->last();
    }
    return maxDataRate;
}

} // namespace scan
