#pragma once

#include "api/ApiRequest.h"
#include "api/Parameters.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// The documents that a list may have at all, whatever is asked for.
struct ListReach
{
    std::string project;
    bool everyProject = false; ///< whatever the project, and those of none
    std::optional<std::vector<std::string>> categories = std::nullopt; ///< nothing: every category
};

/// Those of the project that the caller may read.
ListReach readableIn(const ApiRequest& request, const std::string& project);

/// What a request for a list asks for, by the parameters where, skip, limit, only_count, expand and order,
/// and by those that the list has besides.
struct ListParameters
{
    /// Throws ApiError 400 or QueryError for a parameter that is wrong, and ApiError 404 when nothing of the
    /// project can be reached.
    ListParameters(const ApiRequest& request, const ListReach& reach,
                   const std::vector<std::string_view>& besides = {});
    ListParameters(const ListParameters&) = delete;
    ListParameters& operator=(const ListParameters&) = delete;
    ~ListParameters() = default;

    Parameters given;
    Where where;
    DocumentQuery query; ///< refers to `where`
    bool onlyCount = false;
    bool expand = false;
};

/// What is particular about a list.
struct ListKind
{
    std::optional<std::string> parent = std::nullopt; ///< see DocumentQuery
    const char* order = nullptr; ///< when the request names none; null: by rising identifier
    /// Gives the document with what `expand` adds; null: there is nothing to add.
    std::function<std::string(std::string_view document)> expanded = nullptr;
};

/// Answers a list of documents, as ListParameters says: an array of those in reach, or their number as
/// {"count": N}. Throws ApiError 413 when the array is longer than an answer may be. `parameters` are spent.
HttpResponse answerListing(ListParameters& parameters, const Documents& documents, const ListKind& kind = {});

/// The same of a list without parameters of its own.
HttpResponse answerListing(const ApiRequest& request, const ListReach& reach, const Documents& documents,
                           const ListKind& kind = {});

/// The same of a project's documents in categories that the caller may read.
HttpResponse answerListing(const ApiRequest& request, const std::string& project, const Documents& documents,
                           const ListKind& kind = {});

/// The document that a list belongs to: found among `documents` by the identifier in the request's path.
struct ListParent
{
    const Documents& documents;
    const char* kind; ///< for the message when there is none that the caller may read
};

/// Answers a list of what belongs to one document, as answerListing() does. Throws ApiError 404 without that
/// document.
HttpResponse answerListingOf(const ApiRequest& request, const ListParent& parent, const Documents& documents,
                             const char* order = nullptr);

} // namespace monitorservice
