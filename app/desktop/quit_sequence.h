#pragma once

#include "core/user_settings.h"

// The quit rules: with the summary setting on, the first request to quit shows the summary
// window instead, and a second close of the main window in a row quits at once.
namespace app::desktop {

class QuitSequence {
public:
    enum class Decision { ShowSummary, Terminate };

    explicit QuitSequence(const core::UserSettings& settings) : settings_(settings) {}

    // The main window is being closed.
    Decision close();
    // The application is asked to quit (the Quit command, or a close that lets it decide).
    Decision applicationShouldTerminate();
    // The summary window's "continue scanning": it goes away and the closes count from zero.
    void userDidChooseToContinue();

    bool isReviewWindowVisible() const { return reviewWindowVisible_; }
    int exitAttempt() const { return exitAttempt_; }

private:
    bool summaryWanted() const;

    const core::UserSettings& settings_;
    int exitAttempt_ = 0;
    bool reviewWindowVisible_ = false;
};

} // namespace app::desktop
