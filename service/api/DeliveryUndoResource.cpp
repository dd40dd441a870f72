#include "api/Answers.h"
#include "api/ApiError.h"
#include "api/Parameters.h"
#include "api/Permission.h"
#include "api/Resources.h"
#include "api/TargetClaim.h"
#include "api/WithdrawalText.h"
#include "delivery/DeliveryUndo.h"

namespace monitorservice {

namespace {

DataManage dataManageOf(const Session& session, const History& history)
{
    const auto stored = session.documents(DocumentKind::DataManage).find(history.dataManage);
    if (!stored) {
        throw DamagedDocument("the data manage of a delivery is missing");
    }
    return fromDocument<DataManage>(stored->text);
}

// Only the latest one can be taken back: what later ones brought is counted from what it brought.
void requireLatest(const History& history, const DataManage& dataManage)
{
    if (history.number == 0) {
        throw ApiError(409, "this delivery cannot be taken back: it was made before the service kept what "
                            "deliveries change");
    }
    if (history.number != dataManage.deliveries) {
        throw ApiError(409, "delivery " + std::to_string(history.number) +
                                " is not the latest of its data manage: that is delivery " +
                                std::to_string(dataManage.deliveries));
    }
}

// DELETE historyDatas/{id}: takes the latest delivery of a data manage back and answers its entry with what
// became of what it brought. That is deleting and, of what it corrected, editing: both rights are needed.
HttpResponse undo(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const Claim claim = claimOfDelivery(*request.session, request.ids[0]);
    const auto [session, principal] = beginWriting(request, claim);
    const StoredDocument stored =
        readable(session->documents(DocumentKind::History), principal, "delivery", request.ids[0]);
    requireRight(principal, Right::Delete, "deliveries", stored.project, stored.category);
    requireRight(principal, Right::Edit, "deliveries", stored.project, stored.category);
    const auto history = fromDocument<History>(stored.text);
    const DataManage dataManage = dataManageOf(*session, history);
    requireLatest(history, dataManage);
    const Withdrawal withdrawal = undoDelivery(*session, dataManage, history, principal.owner());
    session->commit();
    return answerJson(withWithdrawal(stored.text, withdrawal));
}

} // namespace

std::vector<Route> deliveryUndoRoutes()
{
    return {{{"historyDatas", "*"}, {{"DELETE", undo}}}};
}

} // namespace monitorservice
