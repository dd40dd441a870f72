#pragma once

#include "ServiceSession.h"
#include "import/Deliveries.h"
#include "import/DeliveryAnswers.h"
#include "import/ImportCallbacks.h"

#include <optional>

/// Sends the deliveries, several in a request as far as possible, and gives what the service says became of
/// them; nothing where it lacks the extension DeliveryResults. Throws the Failure of the first request that
/// fails, which tells how many samples were delivered before.
std::optional<DeliveryAnswers> sendDeliveries(ServiceSession& session, const QList<Delivery>& deliveries,
                                              const ImportCallbacks& callbacks);
