#pragma once

#include "Failure.h"

#include <QString>

struct NetworkExchange;

/// What it means to do a change again when nobody can tell whether it was carried out.
enum class Repetition
{
    MayDouble, ///< the user must look first
    IsHarmless ///< it then changes nothing; what repeats it says so
};

/// What the user is told of a request that failed.
struct RequestContext
{
    /// What was attempted, as the object of "cannot": "read monitoring 64f0…".
    QString purpose;
    QString baseApi;
    QString tokenFile;
    Repetition repetition = Repetition::MayDouble;
};

/// What happened and what to try. `exchange` must have failed.
Failure requestFailure(const NetworkExchange& exchange, const RequestContext& context);
