#pragma once

#include "scanning/scan_results_listener.h"
#include "scanning/wifi_scan_test.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace scanning {

// The list of scan tests, newest first (the newest is the one scanned into), and what the user
// does with it: pick a test to show, rename one, delete one.
class ScanTestList : public QObject {
    Q_OBJECT
public:
    // What a confirmation asks; the answer is true for the default button.
    struct Question {
        QString messageText;
        QString defaultButton;
        QString alternateButton;
    };
    using Confirmation = std::function<bool(const Question&)>;

    using QObject::QObject;

    void setResultsListener(ScanResultsListener* listener) { listener_ = listener; }
    ScanResultsListener* resultsListener() const { return listener_; }
    // The view's answer to "Are you sure you want to delete?"; without one nothing is deleted.
    void setConfirmation(Confirmation confirmation) { confirmation_ = std::move(confirmation); }

    const QList<std::shared_ptr<WiFiScanTest>>& wifiScanTestArray() const { return tests_; }
    std::shared_ptr<WiFiScanTest> newest() const { return tests_.isEmpty() ? nullptr : tests_.first(); }
    // A running test labelled "Scanning", put first and shown.
    std::shared_ptr<WiFiScanTest> startTest(int refreshIntervalSeconds);
    // The newest test stops running; an untouched label becomes "Scanned".
    void stopNewest();
    // The newest record of the connected network in the newest test, if any.
    std::optional<scan::ScanedResultInfo> getConnectedNetworkDetails() const;

    void tableViewSelectionDidChange(int row);
    void renameTest(int row, const QString& label);
    void removeTest(int row);

signals:
    void testListChanged();
    void alertRequested(const QString& messageText, const QString& informativeText);

private:
    QList<std::shared_ptr<WiFiScanTest>> tests_;
    std::shared_ptr<WiFiScanTest> shownTest_;
    ScanResultsListener* listener_ = nullptr;
    Confirmation confirmation_;
};

} // namespace scanning
