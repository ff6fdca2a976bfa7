#pragma once

#include "app/desktop/review_summary.h"

#include <QDialog>

// The summary window shown before quitting: the last connected network and the network counts,
// with "continue scanning" and "close".
namespace app::desktop {

class ReviewWindow : public QDialog {
    Q_OBJECT
public:
    ReviewWindow(const ReviewSummary& summary, QWidget* parent);

signals:
    void userDidChooseToContinue();
    void userDidChooseToClose();
};

} // namespace app::desktop
