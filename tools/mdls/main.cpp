// mdls prints what is known of files: names, times, sizes, type, and what photos, films and documents say of
// themselves.
//
//     $ mdls -name kMDItemPixelWidth photo.jpg
//     kMDItemPixelWidth = 640
//
// Exit codes: 0 done, 1 a file is missing, 64 wrong usage, 69 an engine is missing.
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>

#include <fmt/format.h>

#include "metadata.h"
#include "shared/command_line.h"
#include "shared/tool.h"
#include "text/overloaded.h"

namespace brindlet::tools {

namespace {

namespace fs = std::filesystem;

constexpr OptionRow listOptions[] = {{"-name", true}, {"-raw"}, {"-nullMarker", true}};

constexpr std::string_view nothing = "(null)";

struct Style {
    bool isRaw = false;
    std::string nullMarker{};
};

std::string quoted(std::string_view text, const Style& style) {
    if (style.isRaw) return std::string(text);
    std::string shown = "\"";
    for (const char byte : text) {
        if (byte == '"' || byte == '\\') shown += '\\';
        shown += byte == '\n' ? std::string("\\n") : std::string(1, byte);
    }
    return shown + '"';
}

std::string shownMoment(const Moment& moment) {
    const std::time_t second = moment.second;
    std::tm time{};
    if (!::gmtime_r(&second, &time)) return std::string(nothing);
    char text[64];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S +0000", &time)};
}

std::string shownList(const std::vector<std::string>& items, const Style& style) {
    std::string shown = "(";
    for (const std::string& item : items) shown += (shown.size() > 1 ? ",\n    " : "\n    ") + quoted(item, style);
    return shown + "\n)";
}

std::string shown(const Value& value, const Style& style) {
    return std::visit(Overloaded{
                          [](const Number& number) { return number.digits; },
                          [](const Moment& moment) { return shownMoment(moment); },
                          [&](const std::string& text) { return quoted(text, style); },
                          [&](const std::vector<std::string>& items) { return shownList(items, style); },
                      },
                      value);
}

std::string valueNamed(const Metadata& metadata, const std::string& name, const Style& style) {
    const auto found = metadata.find(name);
    if (found != metadata.end()) return shown(found->second, style);
    return style.isRaw ? style.nullMarker : std::string(nothing);
}

// Raw values stand with nothing between them but a zero byte.
std::string listing(const Metadata& metadata, const std::vector<std::string>& names, const Style& style) {
    std::size_t width = 0;
    for (const std::string& name : names) width = std::max(width, name.size());
    std::string text;
    for (const std::string& name : names) {
        const std::string value = valueNamed(metadata, name, style);
        text += style.isRaw ? value + '\0' : fmt::format("{:{}} = {}\n", name, width, value);
    }
    if (style.isRaw && !text.empty()) text.pop_back();
    return text;
}

int list(const std::vector<std::string>& words) {
    const CommandLine line = readCommandLine(words, listOptions);
    if (line.operands.empty())
        throw ToolFailure{"which file? (mdls [-name ATTRIBUTE] [-raw] FILE...)", statusWrongUsage};
    const Style style{.isRaw = line.has("-raw"),
                      .nullMarker = line.value("-nullMarker").value_or(std::string(nothing))};
    const std::vector<std::string> wanted = line.values("-name");
    int status = 0;
    bool isFirst = true;
    std::optional<ToolFailure> missing;
    bool lacksAny = false;
    for (const std::string& operand : line.operands) {
        std::error_code error;
        if (!fs::exists(fs::symlink_status(operand, error))) {
            complain("mdls", "could not find " + operand + ".");
            status = 1;
            continue;
        }
        std::string file = fs::absolute(operand).lexically_normal().string();
        while (file.size() > 1 && file.back() == '/') file.pop_back();
        const Metadata metadata = metadataOf(file, {wanted.begin(), wanted.end()}, missing);
        std::vector<std::string> names = wanted;
        lacksAny |= std::any_of(wanted.begin(), wanted.end(),
                                [&](const std::string& name) { return metadata.count(name) == 0; });
        if (names.empty())
            for (const auto& each : metadata) names.push_back(each.first);
        const std::string text =
            (style.isRaw && !isFirst ? std::string(1, '\0') : "") + listing(metadata, names, style);
        std::fwrite(text.data(), 1, text.size(), stdout);
        isFirst = false;
    }
    if (missing && lacksAny) throw *missing;
    if (missing && wanted.empty()) complain("mdls", missing->sentence + ", and could tell more");
    return status;
}

}  // namespace

}  // namespace brindlet::tools

int main(int count, char** words) {
    return brindlet::tools::toolMain("mdls", count, words, brindlet::tools::list);
}
