#include "scanning/scan_test_list.h"

#include "scanning/log_category.h"

namespace scanning {

std::shared_ptr<WiFiScanTest> ScanTestList::startTest(int refreshIntervalSeconds)
{
    auto test = std::make_shared<WiFiScanTest>();
    test->testLabel = QStringLiteral("Scanning");
    test->isTestRunning = true;
    test->index = 0;
    test->refreshInterval = refreshIntervalSeconds;
    tests_.prepend(test);

    shownTest_ = test;
    if (listener_) {
        listener_->setCurrentTest(test);
        listener_->reset();
    }
    emit testListChanged();
    return test;
}

void ScanTestList::stopNewest()
{
    if (!tests_.isEmpty()) {
        WiFiScanTest& newest = *tests_.first();
        newest.isTestRunning = false;
        if (newest.testLabel == QLatin1String("Scanning"))
            newest.testLabel = QStringLiteral("Scanned");
    }
    emit testListChanged();
}

std::optional<scan::ScanedResultInfo> ScanTestList::getConnectedNetworkDetails() const
{
    if (tests_.isEmpty())
        return std::nullopt;
    const WiFiScanTest& newest = *tests_.first();
    const auto history = newest.scanedResults.constFind(newest.activeBSSID);
    if (history == newest.scanedResults.cend() || history->isEmpty())
        return std::nullopt;
    return history->first();
}

void ScanTestList::tableViewSelectionDidChange(int row)
{
    if (row < 0 || row >= tests_.size())
        return;
    const auto test = tests_.at(row);
    shownTest_ = test;
    if (!listener_) {
        test->index = row;
        return;
    }
    // reset forgets the view's selection, which is what a test without "plot all" plots next.
    const QStringList previous = listener_->selectedBssids();
    listener_->setCurrentTest(test);
    test->index = row;
    listener_->reset();
    const QStringList toPlot = listener_->shouldPlotAll() ? test->scanedResults.keys() : previous;
    QStringList selection = listener_->selectedBssids();
    for (const QString& bssid : toPlot) {
        if (!selection.contains(bssid))
            selection.append(bssid);
    }
    listener_->setSelectedBssids(selection);
    listener_->updateView(test);
}

void ScanTestList::renameTest(int row, const QString& label)
{
    if (row < 0 || row >= tests_.size() || tests_.at(row)->testLabel == label)
        return;
    tests_.at(row)->testLabel = label;
    emit testListChanged();
}

void ScanTestList::removeTest(int row)
{
    if (row < 0 || row >= tests_.size())
        return;
    const auto test = tests_.at(row);
    if (test->isTestRunning) {
        emit alertRequested(QStringLiteral("You cannot delete currently running test."), QString());
        return;
    }
    const Question question{QStringLiteral("Are you sure you want to delete?"), QStringLiteral("Yes"),
                            QStringLiteral("Cancel")};
    if (!confirmation_ || !confirmation_(question)) {
        qCInfo(lcScanning).noquote() << QStringLiteral("User selected not to delete");
        return;
    }
    if (shownTest_ == test) {
        if (listener_)
            listener_->clearView();
        shownTest_.reset();
    }
    tests_.removeAt(row);
    emit testListChanged();
}

} // namespace scanning
