#include "delivery/JudgementNews.h"

#include "notify/NoteNews.h"

namespace monitorservice {

Judgement::Outcome finishAndTell(Session& session, Judgement& judgement)
{
    Judgement::Outcome outcome = judgement.finish();
    for (const std::string& alarm : outcome.changedAlarms) {
        noteNews(session, alarm);
    }
    return outcome;
}

} // namespace monitorservice
