#include "app/desktop/quit_sequence.h"

namespace app::desktop {

bool QuitSequence::summaryWanted() const
{
    return core::settingIsOn(settings_.value(QStringLiteral("SHOW_SUMMARY_WINDOW")));
}

QuitSequence::Decision QuitSequence::close()
{
    ++exitAttempt_;
    // Exactly 2: the second close in a row quits even while the summary is up.
    if (exitAttempt_ != 2 && !reviewWindowVisible_ && summaryWanted())
        return applicationShouldTerminate();
    return Decision::Terminate;
}

QuitSequence::Decision QuitSequence::applicationShouldTerminate()
{
    if (summaryWanted() && !reviewWindowVisible_) {
        reviewWindowVisible_ = true;
        return Decision::ShowSummary;
    }
    return Decision::Terminate;
}

void QuitSequence::userDidChooseToContinue()
{
    reviewWindowVisible_ = false;
    exitAttempt_ = 0;
}

} // namespace app::desktop
