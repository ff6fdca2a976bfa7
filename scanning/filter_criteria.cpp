#include "scanning/filter_criteria.h"

#include <algorithm>

namespace {

const QString anyValue = QStringLiteral("Any");

bool isSet(const QString& text) { return !text.isEmpty() && text != anyValue; }

QString andOrWord(int item) { return item == 0 ? QStringLiteral("and") : QStringLiteral("or"); }

// Chains a term onto the condition; the database puts the whole chain in parentheses, so
// the words here bind by SQL's own precedence.
void appendTerm(QString& criteria, const QString& word, const QString& term)
{
    criteria = criteria.isEmpty() ? term + QLatin1Char(' ')
                                  : QStringLiteral("%1 %2 %3 ").arg(criteria, word, term);
}

}  // namespace

bool FilterCriteria::userDidClickedApplyFilterButton()
{
    const QString previous = filterCriteria;

    if (channelBandItem == 1) {
        channelBandForFilterValue = QStringLiteral("2.4");
    } else if (channelBandItem == 2) {
        channelBandForFilterValue = QStringLiteral("5");
    } else {
        channelBandForFilterValue.clear();
    }
    isFirstAnd = andOrWord(firstAndOrItem);
    isSecondAnd = andOrWord(secondAndOrItem);
    isThirdAnd = andOrWord(thirdAndOrItem);
    if (rssiWeakOrStrongItem == 0) {
        rssiStrongOrWeek = true;
    } else if (rssiWeakOrStrongItem == 1) {
        rssiStrongOrWeek = false;
    }

    filterCriteria.clear();
    if (isSet(ssidForFilterValue)) {
        filterCriteria = QStringLiteral("SSID like '%1' ").arg(QLatin1Char('%') + ssidForFilterValue + QLatin1Char('%'));
    }
    if (isSet(channelForFilterValue)) {
        appendTerm(filterCriteria, isFirstAnd, QStringLiteral("originalChannel=") + channelForFilterValue);
    }
    if (!channelBandForFilterValue.isEmpty()) {
        appendTerm(filterCriteria, isSecondAnd, QStringLiteral("channelBond=") + channelBandForFilterValue);
    }
    if (!rssiValueForFilter.isEmpty() && rssiValueForFilter != QLatin1String("0")) {
        const QString comparison = rssiStrongOrWeek ? QStringLiteral("rssi > ") : QStringLiteral("rssi < ");
        appendTerm(filterCriteria, isThirdAnd, comparison + rssiValueForFilter);
    }
    return filterCriteria != previous;
}

bool FilterCriteria::clearFilter()
{
    const bool hadCondition = !filterCriteria.isEmpty();
    filterCriteria.clear();
    ssidForFilterValue.clear();
    channelForFilterValue.clear();
    rssiValueForFilter.clear();
    channelBandItem = 0;
    return hadCondition;
}

FilterCriteria::ButtonState FilterCriteria::changeFilterButtonState() const
{
    if (filterCriteria.isEmpty()) {
        return {QStringLiteral("Apply Filter"), false};
    }
    return {QStringLiteral("Filter Applied"), true};
}

void FilterCriteria::addSSID(const QString& ssid)
{
    if (!allSSIDs.contains(ssid)) {
        allSSIDs.append(ssid);
    }
}

void FilterCriteria::addChannel(const QString& channel)
{
    if (!allChannels.contains(channel)) {
        allChannels.append(channel);
    }
}

QStringList FilterCriteria::sortedSSIDs() const
{
    QStringList sorted = allSSIDs;
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

QStringList FilterCriteria::completions(const QString& fieldIdentifier, const QString& partialWord) const
{
    const QStringList& candidates =
        fieldIdentifier == QLatin1String(channelFieldIdentifier) ? allChannels : allSSIDs;
    QStringList matches;
    for (const QString& candidate : candidates) {
        if (candidate.startsWith(partialWord, Qt::CaseInsensitive)) {
            matches.append(candidate);
        }
    }
    std::sort(matches.begin(), matches.end());
    return matches;
}

void FilterCriteria::controlTextDidChange(const std::function<void()>& complete)
{
    if (completePosting || commandHandling) {
        return;
    }
    completePosting = true;
    complete();
    completePosting = false;
}

bool FilterCriteria::doCommandBySelector(const std::function<bool()>& perform)
{
    commandHandling = true;
    const bool performed = perform();
    commandHandling = false;
    return performed;
}
