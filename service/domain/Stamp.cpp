#include "domain/Stamp.h"

#include <algorithm>

namespace monitorservice {

Stamp Stamp::of(const Author& author)
{
    return {author.time, author.name, author.time, author.name};
}

void Stamp::change(const Author& author)
{
    updatedAt = std::max(updatedAt, author.time);
    updatedBy = author.name;
}

} // namespace monitorservice
