#include "scanning/filter_criteria.h"

#include <QRegularExpression>

#include <algorithm>

namespace scanning {

namespace {

const QString anyValue = QStringLiteral("Any");

bool isSet(const QString& text) { return !text.isEmpty() && text != anyValue; }

bool isWholeNumber(const QString& text)
{
    static const QRegularExpression number(QStringLiteral("^[+-]?[0-9]{1,9}$"));
    return number.match(text).hasMatch();
}

QString andOrWord(int item) { return item == 0 ? QStringLiteral("and") : QStringLiteral("or"); }

// LIKE reads % and _ in the typed name as wildcards; escaped, a name matches only itself.
QString likeSubstringPattern(QString text)
{
    text.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    text.replace(QLatin1Char('%'), QStringLiteral("\\%"));
    text.replace(QLatin1Char('_'), QStringLiteral("\\_"));
    return QLatin1Char('%') + text + QLatin1Char('%');
}

// Builds the shown text and the bound condition side by side, term for term, so both chain the
// same words in the same order. The database puts the whole chain in parentheses, so the words
// bind by SQL's own precedence.
class ConditionChain {
public:
    void append(const QString& word, const QString& shownTerm, const QString& boundTerm, const QVariant& value)
    {
        const bool first = shown_.isEmpty();
        shown_ = first ? shownTerm + QLatin1Char(' ') : QStringLiteral("%1 %2 %3 ").arg(shown_, word, shownTerm);
        bound_.text = first ? boundTerm + QLatin1Char(' ') : QStringLiteral("%1 %2 %3 ").arg(bound_.text, word, boundTerm);
        bound_.values.append(value);
    }
    const QString& shown() const { return shown_; }
    const SqlCondition& bound() const { return bound_; }

private:
    QString shown_;
    SqlCondition bound_;
};

}  // namespace

bool FilterCriteria::userDidClickedApplyFilterButton()
{
    const QString previous = filterCriteria;
    const bool signalSet = !rssiValueForFilter.isEmpty() && rssiValueForFilter != QLatin1String("0");
    if (isSet(channelForFilterValue) && !isWholeNumber(channelForFilterValue)) {
        inputError = QStringLiteral("The channel must be a whole number, not \"%1\".").arg(channelForFilterValue);
        return false;
    }
    if (signalSet && !isWholeNumber(rssiValueForFilter)) {
        inputError = QStringLiteral("The signal must be a whole number of dBm, not \"%1\".").arg(rssiValueForFilter);
        return false;
    }
    inputError.clear();

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

    ConditionChain chain;
    if (isSet(ssidForFilterValue)) {
        chain.append({}, QStringLiteral("SSID like '%1'").arg(QLatin1Char('%') + ssidForFilterValue + QLatin1Char('%')),
                     QStringLiteral("SSID like ? escape '\\'"), likeSubstringPattern(ssidForFilterValue));
    }
    if (isSet(channelForFilterValue)) {
        chain.append(isFirstAnd, QStringLiteral("originalChannel=") + channelForFilterValue,
                     QStringLiteral("originalChannel=?"), channelForFilterValue.toInt());
    }
    if (!channelBandForFilterValue.isEmpty()) {
        chain.append(isSecondAnd, QStringLiteral("channelBond=") + channelBandForFilterValue,
                     QStringLiteral("channelBond=?"), channelBandForFilterValue.toDouble());
    }
    if (signalSet) {
        const QString comparison = rssiStrongOrWeek ? QStringLiteral("rssi > ") : QStringLiteral("rssi < ");
        chain.append(isThirdAnd, comparison + rssiValueForFilter, comparison + QLatin1Char('?'), rssiValueForFilter.toInt());
    }
    filterCriteria = chain.shown();
    condition = chain.bound();
    return filterCriteria != previous;
}

bool FilterCriteria::clearFilter()
{
    const bool hadCondition = !filterCriteria.isEmpty();
    filterCriteria.clear();
    condition = {};
    inputError.clear();
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

void FilterCriteria::addSSID(const QString& ssid) { ssids_.append(ssid); }

void FilterCriteria::addChannel(const QString& channel) { channels_.append(channel); }

QStringList FilterCriteria::sortedSSIDs() const
{
    QStringList sorted = allSSIDs();
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

QStringList FilterCriteria::completions(const QString& fieldIdentifier, const QString& partialWord) const
{
    const QStringList& candidates =
        fieldIdentifier == QLatin1String(channelFieldIdentifier) ? allChannels() : allSSIDs();
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

} // namespace scanning
