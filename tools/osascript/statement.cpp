#include "statement.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "shared/tool.h"
#include "text/characters.h"

namespace brindlet::tools {

namespace {

constexpr double loudest = 7;  // of the plain "set volume N"

struct Token {
    std::string text;  // of a word in lower case
    bool isQuoted = false;
};

struct Instead {
    std::string_view beginning, use;
};
constexpr Instead insteads[] = {
    {"display dialog", "use 'zenity --question --text TEXT' or 'zenity --entry --text TEXT'"},
    {"display alert", "use 'zenity --warning --text TEXT'"},
    {"choose file", "use 'zenity --file-selection'"},
    {"choose folder", "use 'zenity --file-selection --directory'"},
    {"do shell script", "run the command itself"},
    {"say", "use 'spd-say TEXT'"},
    {"open location", "use 'xdg-open ADDRESS'"},
    {"tell", "applications take no scripts here; 'open -a NAME' starts one, 'pkill NAME' ends one"},
    {"set the clipboard", "use pbcopy"},
    {"the clipboard", "use pbpaste"},
    {"get the clipboard", "use pbpaste"},
};

[[noreturn]] void refuse(std::string_view line) {
    std::string lower = lowercased(line);
    for (const Instead& each : insteads)
        if (lower.starts_with(each.beginning))
            throw ToolFailure{"'" + std::string(each.beginning) + "' can't be done here; " + std::string(each.use),
                              statusMissingEngine};
    throw ToolFailure{"of such scripts only 'display notification' and 'set volume' can be run here",
                      statusMissingEngine};
}

// Words and texts; empty where a text has no end.
std::vector<Token> tokensOf(std::string_view line) {
    std::vector<Token> tokens;
    for (std::size_t at = 0; at < line.size();) {
        if (line[at] == ' ' || line[at] == '\t') {
            ++at;
        } else if (line[at] == '"') {
            Token token{.text = "", .isQuoted = true};
            for (++at; at < line.size() && line[at] != '"'; ++at) {
                if (line[at] == '\\' && at + 1 < line.size()) {
                    ++at;
                    token.text += line[at] == 'n' ? '\n' : line[at] == 't' ? '\t' : line[at];
                } else {
                    token.text += line[at];
                }
            }
            if (at++ == line.size()) return {};
            tokens.push_back(token);
        } else {
            const std::size_t end = std::min(line.find_first_of(" \t\"", at), line.size());
            tokens.push_back({lowercased(line.substr(at, end - at)), false});
            at = end;
        }
    }
    return tokens;
}

class StatementReader {
  public:
    explicit StatementReader(std::string_view line) : line_(line), tokens_(tokensOf(line)) {}

    Statement read() {
        if (takes({"display", "notification"})) return notification();
        if (takes({"set", "volume"})) return volumeChange();
        refuse(line_);
    }

  private:
    bool atEnd() const { return at_ == tokens_.size(); }

    // Goes past these words where they come next.
    bool takes(std::initializer_list<std::string_view> words) {
        if (tokens_.size() - at_ < words.size()) return false;
        const bool areNext =
            std::equal(words.begin(), words.end(), tokens_.begin() + static_cast<std::ptrdiff_t>(at_),
                       [](std::string_view word, const Token& token) { return !token.isQuoted && token.text == word; });
        if (areNext) at_ += words.size();
        return areNext;
    }

    std::string text() {
        if (atEnd() || !tokens_[at_].isQuoted) throw ToolFailure{"a text in quotes is missing", statusWrongUsage};
        return tokens_[at_++].text;
    }

    double number(double most) {
        char* end = nullptr;
        const double value = atEnd() ? -1 : std::strtod(tokens_[at_].text.c_str(), &end);
        if (atEnd() || *end || !(value >= 0 && value <= most))
            throw ToolFailure{"a volume is a plain number here", statusWrongUsage};
        ++at_;
        return value;
    }

    Notification notification() {
        Notification made{.text = text()};
        while (!atEnd()) {
            if (takes({"with", "title"})) {
                made.title = text();
            } else if (takes({"subtitle"})) {
                made.subtitle = text();
            } else if (takes({"sound", "name"})) {
                text();
            } else {
                refuse("");
            }
        }
        return made;
    }

    VolumeChange volumeChange() {
        VolumeChange made;
        if (atEnd()) refuse("");
        while (!atEnd()) {
            if (takes({"output", "volume"})) {
                made.percent = static_cast<int>(std::lround(number(100)));
            } else if (takes({"with", "output", "muted"}) || takes({"output", "muted", "true"})) {
                made.isMuted = true;
            } else if (takes({"without", "output", "muted"}) || takes({"output", "muted", "false"})) {
                made.isMuted = false;
            } else {
                made.percent = static_cast<int>(std::lround(number(loudest) / loudest * 100));
            }
        }
        return made;
    }

    std::string_view line_;
    std::vector<Token> tokens_;
    std::size_t at_ = 0;
};

}  // namespace

Statement readStatement(std::string_view line) {
    return StatementReader(line).read();
}

}  // namespace brindlet::tools
