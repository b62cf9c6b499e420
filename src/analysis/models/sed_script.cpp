#include "analysis/models/sed_script.h"

#include <cstddef>
#include <optional>

#include "text/strings.h"

namespace brindlet {

namespace {

// How a command goes on behind its letter.
enum class Form { plain, block, blockEnd, number, label, text, file, program, substitution, transliteration, comment };

struct CommandRow {
    std::string_view letters;
    Form form;
};
constexpr CommandRow commandRows[] = {
    {"=dDFgGhHnNpPxz", Form::plain}, {"{", Form::block},           {"}", Form::blockEnd}, {"lLqQ", Form::number},
    {":btTv", Form::label},          {"aic", Form::text},          {"rRwW", Form::file},  {"e", Form::program},
    {"s", Form::substitution},       {"y", Form::transliteration}, {"#", Form::comment},
};

std::optional<Form> formOf(char letter) {
    for (const auto& [letters, form] : commandRows)
        if (letters.find(letter) != std::string_view::npos) return form;
    return std::nullopt;
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isStandardStream(std::string_view file) {
    return file == "/dev/stdout" || file == "/dev/stderr";
}

// Whether a delimiter inside brackets, as in s/[/]/x/, is part of the expression depends on the version.
enum class Brackets { areSets, areNothing };

class SedReader {
  public:
    SedReader(std::string_view script, Brackets brackets) : rest_(script), brackets_(brackets) {}

    SedScript read() {
        while (found_.isUnderstood) {
            skipWhile([](char c) { return isBlank(c) || c == '\n' || c == ';'; });
            if (rest_.empty()) break;
            found_.isUnderstood = readCommand();
        }
        return std::move(found_);
    }

  private:
    // --- characters ---

    bool at(char c) const { return !rest_.empty() && rest_.front() == c; }
    char take() {
        const char c = rest_.front();
        rest_.remove_prefix(1);
        return c;
    }
    bool takeIf(char c) {
        if (!at(c)) return false;
        rest_.remove_prefix(1);
        return true;
    }
    template <class Test>
    void skipWhile(Test test) {
        while (!rest_.empty() && test(rest_.front())) rest_.remove_prefix(1);
    }
    void skipBlanks() { skipWhile(isBlank); }
    std::string_view takeLine() {
        const std::string_view line = rest_.substr(0, rest_.find('\n'));
        rest_.remove_prefix(line.size());
        return line;
    }

    // --- commands ---

    bool readCommand() {
        if (!readAddresses()) return false;
        skipBlanks();
        while (takeIf('!')) skipBlanks();
        if (rest_.empty()) return false;
        const char letter = take();
        const auto form = formOf(letter);
        return form && readRest(letter, *form);
    }

    bool readRest(char letter, Form form) {
        switch (form) {
            case Form::block:
                return true;
            case Form::plain:
            case Form::blockEnd:
                return atEndOfCommand();
            case Form::number:
                skipBlanks();
                skipWhile(isDigit);
                return atEndOfCommand();
            case Form::label:
                skipBlanks();
                skipWhile([](char c) { return !isBlank(c) && !contains("\n;}#", {&c, 1}); });
                return !at('#');  // in a label or a comment, depending on the version
            case Form::text:
                return readText();
            case Form::file:
                skipBlanks();
                return readFileName(letter == 'r' || letter == 'R');
            case Form::program:
                takeLine();
                found_.runsCommands = true;
                return true;
            case Form::substitution:
                return readSubstitution();
            case Form::transliteration:
                return readTransliteration();
            case Form::comment:
                takeLine();
                return true;
        }
        return false;
    }

    bool atEndOfCommand() {
        skipBlanks();
        return rest_.empty() || at('}') || at('#') || takeIf(';') || takeIf('\n');
    }

    // Up to the first line end that has no backslash in front of it.
    bool readText() {
        skipBlanks();
        if (rest_.empty()) return false;
        if (takeIf('\\')) {
            skipBlanks();
            takeIf('\n');
        }
        while (!rest_.empty()) {
            const char c = take();
            if (c == '\n') break;
            if (c == '\\' && !rest_.empty()) take();
        }
        return true;
    }

    bool readFileName(bool isRead) {
        const std::string_view name = takeLine();
        if (name.empty()) return false;
        if (isRead)
            found_.readFiles.emplace_back(name);
        else if (!isStandardStream(name))
            found_.writtenFiles.emplace_back(name);
        return true;
    }

    bool readSubstitution() {
        if (rest_.empty()) return false;
        const char delimiter = take();
        if (!skipPast(delimiter, true) || !skipPast(delimiter, false)) return false;
        while (!rest_.empty() && !at('}') && !at('#')) {
            const char flag = take();
            if (flag == ';' || flag == '\n') return true;
            if (flag == 'w') {
                skipBlanks();
                return readFileName(false);
            }
            if (flag == 'e')
                found_.runsCommands = true;
            else if (!isBlank(flag) && !isDigit(flag) && !contains("gpiImM", {&flag, 1}))
                return false;
        }
        return true;
    }

    bool readTransliteration() {
        if (rest_.empty()) return false;
        const char delimiter = take();
        return skipPast(delimiter, false) && skipPast(delimiter, false) && atEndOfCommand();
    }

    // --- addresses ---

    bool readAddresses() {
        bool hasAddress = false;
        if (!readAddress(hasAddress)) return false;
        if (!hasAddress) return true;
        skipBlanks();
        if (!takeIf(',')) return true;
        skipBlanks();
        bool hasSecond = takeIf('+') || takeIf('~');
        return readAddress(hasSecond) && hasSecond;
    }

    // False for an expression that doesn't end.
    bool readAddress(bool& isThere) {
        if (takeIf('$')) {
            isThere = true;
        } else if (!rest_.empty() && isDigit(rest_.front())) {
            isThere = true;
            skipWhile(isDigit);
            skipBlanks();
            if (takeIf('~')) {
                skipBlanks();
                skipWhile(isDigit);
            }
        } else if (at('/') || at('\\')) {
            isThere = true;
            takeIf('\\');
            if (rest_.empty() || !skipPast(take(), true)) return false;
            skipWhile([](char c) { return c == 'I' || c == 'M'; });
        }
        return true;
    }

    // --- expressions ---

    bool skipPast(char delimiter, bool isExpression) {
        while (!rest_.empty()) {
            const char c = take();
            if (c == delimiter) return true;
            if (c == '\n') return false;
            if (c == '\\') {
                if (rest_.empty()) return false;
                take();
            } else if (c == '[' && isExpression && brackets_ == Brackets::areSets && !skipSet()) {
                return false;
            }
        }
        return false;
    }

    // Behind the opening bracket; what stands in it is no escape.
    bool skipSet() {
        takeIf('^');
        takeIf(']');
        while (!rest_.empty()) {
            const char c = take();
            if (c == ']') return true;
            if (c == '\n') return false;
            if (c == '[' && (at('.') || at(':') || at('='))) {
                const char end[] = {take(), ']', '\0'};
                const std::size_t close = rest_.find(end);
                if (close == std::string_view::npos) return false;
                rest_.remove_prefix(close + 2);
            }
        }
        return false;
    }

    std::string_view rest_;
    const Brackets brackets_;
    SedScript found_;
};

void append(std::vector<std::string>& all, std::vector<std::string>& more) {
    for (auto& each : more) all.push_back(std::move(each));
}

}  // namespace

SedScript readSedScript(std::string_view script) {
    SedScript found = SedReader(script, Brackets::areSets).read();
    if (script.find('[') == std::string_view::npos) return found;
    SedScript other = SedReader(script, Brackets::areNothing).read();
    append(found.writtenFiles, other.writtenFiles);
    append(found.readFiles, other.readFiles);
    found.runsCommands |= other.runsCommands;
    found.isUnderstood |= other.isUnderstood;
    return found;
}

}  // namespace brindlet
