#include "attributes.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "shared/tool.h"
#include "text/characters.h"
#include "text/regex.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

using Texts = std::vector<std::string>;

Texts shownNames(Candidate& candidate) {
    const std::filesystem::path name = candidate.name();
    return {name.string(), name.stem().string()};
}

double changeTime(Candidate& candidate) {
    return candidate.times().changed;
}
double makingTime(Candidate& candidate) {
    return candidate.times().made;
}

AttributeRow textRow(std::string_view name, Texts (*texts)(Candidate&)) {
    return {.name = name, .texts = texts};
}
AttributeRow sizeRow(std::string_view name) {
    return {.name = name, .cost = needsStatus, .number = [](Candidate& candidate) { return candidate.size(); }};
}
AttributeRow timeRow(std::string_view name, double (*time)(Candidate&)) {
    return {.name = name, .cost = needsStatus, .number = time, .isTime = true};
}

const AttributeRow attributeRows[] = {
    textRow("kMDItemFSName", [](Candidate& candidate) { return Texts{candidate.name()}; }),
    textRow("kMDItemDisplayName", shownNames),
    textRow("kMDItemPath", [](Candidate& candidate) { return Texts{candidate.path()}; }),
    textRow("kMDItemContentType", [](Candidate& candidate) { return Texts{std::string(candidate.type().identifier)}; }),
    textRow("kMDItemContentTypeTree", [](Candidate& candidate) { return contentTypeTree(candidate.type()); }),
    textRow("kMDItemKind", [](Candidate& candidate) { return Texts{std::string(candidate.type().kind)}; }),
    {.name = "kMDItemTextContent",
     .cost = needsText,
     .texts = [](Candidate& candidate) { return Texts{candidate.text()}; },
     .isProse = true},
    {.name = "*",
     .cost = needsText,
     .texts =
         [](Candidate& candidate) {
             return Texts{candidate.name(), candidate.text()};
         },
     .isProse = true},
    sizeRow("kMDItemFSSize"),
    sizeRow("kMDItemLogicalSize"),
    timeRow("kMDItemFSContentChangeDate", changeTime),
    timeRow("kMDItemContentModificationDate", changeTime),
    timeRow("kMDItemFSCreationDate", makingTime),
    timeRow("kMDItemContentCreationDate", makingTime),
    timeRow("kMDItemDateAdded", makingTime),
    timeRow("kMDItemLastUsedDate", [](Candidate& candidate) { return candidate.times().used; }),
};

// The beginnings of days, weeks, months and years, and how to go on from one to others.
struct Unit {
    std::string_view name;
    int std::tm::*counted;
    int step = 1;
    int already = 0;  // how many of it "name" itself is away: yesterday is a day back
};
constexpr Unit units[] = {
    {"today", &std::tm::tm_mday},        {"yesterday", &std::tm::tm_mday, 1, -1}, {"tomorrow", &std::tm::tm_mday, 1, 1},
    {"this_week", &std::tm::tm_mday, 7}, {"this_month", &std::tm::tm_mon},        {"this_year", &std::tm::tm_year},
};
// What lies further away is no date of a file.
constexpr std::int64_t furthestStep = 100'000;

const Unit* unitNamed(std::string_view name) {
    const auto* unit =
        std::find_if(std::begin(units), std::end(units), [&](const Unit& each) { return each.name == name; });
    return unit == std::end(units) ? nullptr : unit;
}

double beginningOf(const Unit& unit, std::int64_t steps, std::time_t now) {
    std::tm local{};
    ::localtime_r(&now, &local);
    local.tm_hour = local.tm_min = local.tm_sec = 0;
    local.tm_isdst = -1;
    if (unit.step == 7) local.tm_mday -= (local.tm_wday + 6) % 7;  // weeks begin on Monday
    if (unit.counted != &std::tm::tm_mday) local.tm_mday = 1;
    if (unit.counted == &std::tm::tm_year) local.tm_mon = 0;
    const std::int64_t moved = std::clamp(steps, -furthestStep, furthestStep) + unit.already;
    local.*unit.counted += static_cast<int>(moved) * unit.step;
    return static_cast<double>(std::mktime(&local));
}

// "2024-01-31", "2024-01-31T12:00:00", with a "Z" in universal time.
std::optional<double> isoTime(std::string_view text) {
    static const Regex iso(R"(^(\d{4})-(\d\d)-(\d\d)(?:[T ](\d\d):(\d\d)(?::(\d\d))?)?\s?(Z|\+0000)?$)");
    const auto match = iso.find(text);
    if (!match) return std::nullopt;
    const auto number = [&](std::size_t group) {
        return static_cast<int>(parsedInteger(match->group(group).value_or("0")).value_or(0));
    };
    std::tm time{};
    time.tm_year = number(1) - 1900;
    time.tm_mon = number(2) - 1;
    time.tm_mday = number(3);
    time.tm_hour = number(4);
    time.tm_min = number(5);
    time.tm_sec = number(6);
    time.tm_isdst = -1;
    return static_cast<double>(match->group(7) ? ::timegm(&time) : std::mktime(&time));
}

std::optional<double> timeValue(std::string_view text, std::time_t now) {
    static const Regex relative(R"(^\$time\.([a-z_]+)(?:\(([^()]*)\))?$)");
    const auto match = relative.find(text);
    if (!match) return isoTime(text);
    const std::string_view name = *match->group(1), argument = trimmed(match->group(2).value_or(""));
    if (name == "iso") return isoTime(argument);
    const auto steps = argument.empty() ? std::optional<std::int64_t>(0) : parsedInteger(argument);
    if (!steps) return std::nullopt;
    if (name == "now") return static_cast<double>(now) + static_cast<double>(*steps);
    const Unit* const unit = unitNamed(name);
    return unit ? std::optional<double>(beginningOf(*unit, *steps, now)) : std::nullopt;
}

}  // namespace

const AttributeRow& attributeNamed(std::string_view name) {
    const std::string lower = lowercased(name);
    for (const AttributeRow& row : attributeRows)
        if (lowercased(row.name) == lower) return row;
    std::vector<std::string> known;
    for (const AttributeRow& row : attributeRows) known.emplace_back(row.name);
    throw ToolFailure{"'" + std::string(name) + "' can't be searched for here; " + joined(known, ", ") + " can",
                      statusWrongUsage};
}

double numberValue(const AttributeRow& row, std::string_view text, std::time_t now) {
    const std::string copy(text);
    char* end = nullptr;
    const auto value = row.isTime ? timeValue(text, now) : std::optional<double>(std::strtod(copy.c_str(), &end));
    if (!value || (end && (*end || end == copy.c_str())))
        throw ToolFailure{"'" + copy + "' is no value for " + std::string(row.name), statusWrongUsage};
    return *value;
}

std::optional<Period> periodNamed(std::string_view word, std::time_t now) {
    if (const Unit* const unit = unitNamed(replacedAll(word, " ", "_")))
        return Period{beginningOf(*unit, 0, now), beginningOf(*unit, 1, now)};
    const auto day = isoTime(word);
    if (!day) return std::nullopt;
    return Period{*day, *day + 24 * 60 * 60};
}

}  // namespace brindlet::tools
