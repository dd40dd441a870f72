#include "http/HttpMessage.h"

#include "json/JsonText.h"

namespace monitorservice {

HttpResponse errorResponse(unsigned status, std::string_view message)
{
    HttpResponse response;
    response.status = status;
    response.body = JsonObjectWriter().text("message", message).integer("status", status).finish();
    if (status == 503) {
        response.headers.emplace_back("Retry-After", "1");
    }
    return response;
}

} // namespace monitorservice
