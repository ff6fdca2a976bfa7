#pragma once

#include "scanning/sql_condition.h"
#include "scanning/unique_string_list.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace scanning {

// The filter bar of the scanner tab without its widgets: the user's inputs, the SQL condition
// they make for the database's reading queries, and the completion of the filter fields.
class FilterCriteria {
public:
    static constexpr const char* channelFieldIdentifier = "channelFilterField";

    // Field texts and pop-up items as the user left them.
    QString ssidForFilterValue;
    QString channelForFilterValue;
    QString rssiValueForFilter;
    int channelBandItem = 0;       // 0 any, 1 2.4 GHz, 2 5 GHz
    int firstAndOrItem = 0;        // 0 "and", any other "or"
    int secondAndOrItem = 0;
    int thirdAndOrItem = 0;
    int rssiWeakOrStrongItem = 0;  // 0 stronger, 1 weaker

    // What the last apply made of them.
    QString channelBandForFilterValue;
    bool rssiStrongOrWeek = true;
    QString isFirstAnd = QStringLiteral("and");
    QString isSecondAnd = QStringLiteral("and");
    QString isThirdAnd = QStringLiteral("and");
    QString filterCriteria;  // empty = no filter; the text the user is shown
    // The same condition as the database runs it: the typed values are bound, never spliced in.
    SqlCondition condition;
    // Why the last apply was refused (a channel or signal that is not a number); empty after a
    // successful apply. A refused apply keeps the previous condition.
    QString inputError;

    bool completePosting = false;
    bool commandHandling = false;

    // Rebuilds filterCriteria from the inputs. Returns whether it changed, in which case the
    // caller scans at once and refreshes the apply button. Returns false with inputError set
    // when the channel or signal field holds something other than a whole number.
    bool userDidClickedApplyFilterButton();
    // Empties the condition and the text fields and resets the band. Returns whether a
    // condition had been set, in which case the caller scans at once.
    bool clearFilter();

    struct ButtonState {
        QString title;
        bool highlighted = false;
    };
    ButtonState changeFilterButtonState() const;

    // Names and channels seen by the scans, each remembered once, in the order first seen;
    // the scan processing offers every name and channel it shows, the completion reads them.
    void addSSID(const QString& ssid);
    void addChannel(const QString& channel);
    const QStringList& allSSIDs() const { return ssids_.items(); }
    const QStringList& allChannels() const { return channels_.items(); }
    QStringList sortedSSIDs() const;

    // Candidates for the word being typed in the field with the given identifier.
    QStringList completions(const QString& fieldIdentifier, const QString& partialWord) const;
    // Runs complete unless a completion or a field-editor command is already under way, so the
    // text change that a completion itself makes does not start another one.
    void controlTextDidChange(const std::function<void()>& complete);
    // Runs a field-editor command with commandHandling set; returns what perform returns.
    bool doCommandBySelector(const std::function<bool()>& perform);

private:
    UniqueStringList ssids_;
    UniqueStringList channels_;
};

} // namespace scanning
