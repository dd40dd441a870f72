#pragma once

#include "ServiceSession.h"
#include "import/DeliveryAnswers.h"
#include "import/ImportOutcome.h"

#include <QVector>

/// The samples that deliveries corrected, with their values before and after, from the service's audit trail:
/// at most SampleOutcome::keptCorrections, by point and time. Throws a Failure where the service lacks the
/// extension Changes.
QVector<CorrectedSample> correctionsMade(ServiceSession& session, const DeliveryAnswers& answers);
