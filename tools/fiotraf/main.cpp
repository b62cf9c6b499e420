// fiotraf tidies a folder up: its files go into folders by type, by month or by extension.
//
// Exit codes: 0 done or shown, 1 something failed, 64 wrong usage.
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "execute.h"
#include "options.h"
#include "plan.h"
#include "report.h"
#include "text/overloaded.h"
#include "text/utf8.h"

namespace fiotraf {

namespace {

constexpr int failed = 1;
constexpr int wrongUsage = 64;

void print(std::FILE* stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
}

void complain(const std::string& sentence) {
    print(stderr, "fiotraf: " + brindlet::toValidUtf8(sentence) + "\n");
}

int organize(const Options& options) {
    const auto made = makePlan(options);
    if (const auto* failure = std::get_if<Failure>(&made)) {
        complain(failure->sentence);
        return failed;
    }
    const Plan& plan = std::get<Plan>(made);
    print(stdout, describe(plan, options));
    if (!options.executes || plan.categories.empty()) return 0;
    const Outcome outcome = execute(plan, options);
    print(stdout, describe(outcome, options));
    for (const auto& sentence : outcome.failures) complain(sentence);
    return outcome.failures.empty() ? 0 : failed;
}

int run(const std::vector<std::string>& words) {
    return std::visit(brindlet::Overloaded{
                          [](const Options& options) { return organize(options); },
                          [](const HelpWanted&) {
                              print(stdout, helpText());
                              return 0;
                          },
                          [](const WrongUsage& wrong) {
                              complain(wrong.sentence);
                              return wrongUsage;
                          },
                      },
                      readOptions(words));
}

}  // namespace

}  // namespace fiotraf

int main(int argc, char** argv) {
    try {
        const int status = fiotraf::run({argv + (argc > 0 ? 1 : 0), argv + argc});
        return std::fflush(stdout) == 0 ? status : fiotraf::failed;
    } catch (const std::exception& error) {
        fiotraf::complain(error.what());
        return fiotraf::failed;
    }
}
