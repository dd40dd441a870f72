#pragma once

#include "alarm/Judgement.h"
#include "store/Session.h"

namespace monitorservice {

/// Ends the judgement and sees to it that people are told of the alarms that it has changed.
Judgement::Outcome finishAndTell(Session& session, Judgement& judgement);

} // namespace monitorservice
