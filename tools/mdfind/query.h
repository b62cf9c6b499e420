// What a search asks of a file: comparisons of attributes, "kind:" and "date:", and words that its name or its text
// has, joined by "&&" (or nothing), "||", "!" and parentheses.
//
//     const Query query = Query::parse(R"(kMDItemFSName == *.pdf date:today && kMDItemTextContent == "*apple*"c)");
//     if (query.matches(candidate)) ...
#pragma once

#include <ctime>
#include <functional>
#include <string_view>
#include <vector>

#include "candidate.h"

namespace brindlet::tools {

class Query {
  public:
    // A ToolFailure that says what can't be understood. Times count from `now`.
    static Query parse(std::string_view text, std::time_t now);
    // A part of the name, in any case.
    static Query nameHolds(std::string_view text);
    static Query both(Query left, Query right);

    bool matches(Candidate& candidate) const;

  private:
    friend class QueryParser;
    enum class Kind { test, all, any, none };
    using Test = std::function<bool(Candidate&)>;

    static Query tested(Test test, int cost);
    static Query joined(Kind kind, std::vector<Query> parts);

    Kind kind_ = Kind::test;
    std::vector<Query> parts_{};  // the cheapest first
    Test test_{};
    int cost_ = 0;
};

}  // namespace brindlet::tools
