#pragma once

#include <string>
#include <vector>

namespace monitorservice::test {

/// One sample as JSON.
inline std::string sample(const std::string& time, int count, const std::string& value,
                          const std::string& timeFlag = {})
{
    return R"({"count":)" + std::to_string(count) + R"(,"time":")" + time + R"(","value":)" + value +
           R"(,"timeFlag":")" + timeFlag + R"("})";
}

inline std::string joined(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts) {
        all += all.empty() ? "" : ",";
        all += text;
    }
    return all;
}

/// A point of monitoring "c1", sub-category "s1", as JSON; `more` begins with a comma.
inline std::string point(const std::string& name, const std::vector<std::string>& samples,
                         const std::string& more = {}, const std::string& cell = "c1",
                         const std::string& subCategory = "s1")
{
    return R"({"cellId":")" + cell + R"(","subCategoryId":")" + subCategory + R"(","name":")" + name +
           R"(","data":[)" + joined(samples) + "]" + more + "}";
}

inline std::string delivery(const std::vector<std::string>& points)
{
    return "[" + joined(points) + "]";
}

} // namespace monitorservice::test
