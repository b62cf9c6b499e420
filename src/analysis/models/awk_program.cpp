#include "analysis/models/awk_program.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <vector>

#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

constexpr std::string_view unreadable = "text that can be read in two ways";

// Sorted, which is asserted. Behind one of these a slash begins an expression.
constexpr std::string_view wordsBeforeExpressions[] = {"case", "delete", "do",    "else",   "exit",   "for",
                                                       "if",   "in",     "print", "printf", "return", "while"};
static_assert(std::is_sorted(std::begin(wordsBeforeExpressions), std::end(wordsBeforeExpressions)));

// Behind one of these a slash could begin an expression or divide.
constexpr std::string_view wordsBeforeEither[] = {"BEGIN",   "END",    "break", "continue",
                                                  "getline", "length", "next",  "nextfile"};
// A closing parenthesis of theirs is followed by a statement.
constexpr std::string_view wordsWithCondition[] = {"for", "if", "while", "switch"};

template <std::size_t size>
bool isOneOf(std::string_view word, const std::string_view (&words)[size]) {
    return std::find(std::begin(words), std::end(words), word) != std::end(words);
}

bool isNameCharacter(char c) {
    return c == '_' || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// Whether a place in an expression is inside brackets, where a slash ends the expression for some of the tools and not
// for others: by the closing brackets alone, and with classes such as [:digit:] and a leading "]" in sight.
class ExpressionSets {
  public:
    void pass(char c) {
        if (c == '[') isOpenPlainly_ = true;
        if (c == ']') isOpenPlainly_ = false;
        passStrictly(c);
        last_ = c;
    }
    bool mayBeOpen() const { return isOpenPlainly_ || isOpen_; }

  private:
    void passStrictly(char c) {
        if (!isOpen_) {
            isOpen_ = isAtStart_ = c == '[';
            return;
        }
        const bool isFirst = isAtStart_;
        isAtStart_ = isFirst && c == '^' && last_ == '[';
        if (class_ != 0) {
            if (c == ']' && last_ == class_) class_ = 0;
        } else if (last_ == '[' && !isFirst && (c == ':' || c == '.' || c == '=')) {
            class_ = c;
        } else if (c == ']' && !isFirst) {
            isOpen_ = false;
        }
    }

    bool isOpenPlainly_ = false;
    bool isOpen_ = false;
    bool isAtStart_ = false;  // behind "[" or "[^"
    char class_ = 0;          // the sign of a class that has begun
    char last_ = 0;
};

class AwkReader {
  public:
    explicit AwkReader(std::string_view program) : rest_(program) {}

    std::optional<std::string_view> read() {
        while (!rest_.empty())
            if (auto hazard = readToken()) return hazard;
        return std::nullopt;
    }

  private:
    using Hazard = std::optional<std::string_view>;

    // What a slash would be behind the last token.
    enum class Slash { begins, divides, either };

    char take() {
        const char c = rest_.front();
        rest_.remove_prefix(1);
        return c;
    }
    bool takeIf(char c) {
        if (rest_.empty() || rest_.front() != c) return false;
        rest_.remove_prefix(1);
        return true;
    }
    Hazard then(Slash slash) {
        slash_ = slash;
        return std::nullopt;
    }

    Hazard readToken() {
        if (isNameCharacter(rest_.front()) || rest_.front() == '.') return readWord();
        const char c = take();
        switch (c) {
            case ' ':
            case '\t':
            case '\r':
                return std::nullopt;
            case '\\':
                takeIf('\r');
                if (!takeIf('\n')) return unreadable;
                return std::nullopt;
            case '#':
                rest_.remove_prefix(std::min(rest_.find('\n'), rest_.size()));
                return std::nullopt;
            case '"':
                return readString();
            case '/':
                return readSlash();
            case '|':
                return takeIf('|') ? then(Slash::begins) : "a pipe";
            case '@':
                return "'@'";
            case '>':
                return readGreater();
            case '<':
                if (readsLines_) return "getline with file input";
                return then(Slash::begins);
            case '(':
            case '[':
                open_.push_back(c == '(' && beginsCondition_);
                beginsCondition_ = false;
                return then(Slash::begins);
            case ')':
            case ']':
                return close();
            case '+':
            case '-':
                // Behind a value "++" belongs to it; before one nothing changes.
                if (takeIf(c)) return std::nullopt;
                return then(Slash::begins);
            case ';':
            case '{':
            case '}':
                printsAt_.reset();
                return then(Slash::begins);
            default:
                if (!contains("\n,!~=&?:*%^$", {&c, 1})) return unreadable;
                return then(Slash::begins);
        }
    }

    Hazard readWord() {
        const auto end =
            std::find_if_not(rest_.begin(), rest_.end(), [](char c) { return isNameCharacter(c) || c == '.'; });
        const auto word = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
        rest_.remove_prefix(word.size());
        if (word == "system") return "system()";
        if (word == "print" || word == "printf") printsAt_ = open_.size();
        if (word == "getline") readsLines_ = true;
        beginsCondition_ = isOneOf(word, wordsWithCondition);
        if (isOneOf(word, wordsBeforeExpressions)) return then(Slash::begins);
        return then(isOneOf(word, wordsBeforeEither) ? Slash::either : Slash::divides);
    }

    Hazard close() {
        const bool isCondition = !open_.empty() && open_.back();
        if (!open_.empty()) open_.pop_back();
        return then(isCondition ? Slash::begins : Slash::divides);
    }

    Hazard readString() {
        while (!rest_.empty()) {
            const char c = take();
            if (c == '"') return then(Slash::divides);
            if (c == '\n') break;
            if (c == '\\' && !rest_.empty()) take();
        }
        return unreadable;
    }

    Hazard readSlash() {
        if (slash_ == Slash::divides) return then(Slash::begins);
        if (slash_ == Slash::either) return unreadable;
        ExpressionSets sets;
        while (!rest_.empty()) {
            const char c = take();
            if (c == '\n') break;
            if (c == '\\' && !rest_.empty()) {
                sets.pass('\\');
                take();
            } else if (c != '/') {
                sets.pass(c);
            } else {
                return sets.mayBeOpen() ? unreadable : then(Slash::divides);
            }
        }
        return unreadable;
    }

    // In a print statement, outside parentheses, it sends the output to a file.
    Hazard readGreater() {
        if (rest_.starts_with('>')) return "append redirection (>>)";
        if (printsAt_ && open_.size() <= *printsAt_) return "output redirection";
        return then(Slash::begins);
    }

    std::string_view rest_;
    Slash slash_ = Slash::begins;
    std::vector<bool> open_;  // parentheses and brackets, and whether one holds a condition
    std::optional<std::size_t> printsAt_;
    bool beginsCondition_ = false;  // the last word
    bool readsLines_ = false;       // from here on "<" may name a file
};

}  // namespace

std::optional<std::string_view> awkHazard(std::string_view program) {
    if (!isValidUtf8(program)) return "bytes that are no text";
    // Most programs hold nothing that could matter, however they are read.
    const bool isPlain = program.find_first_of("|>@<") == std::string_view::npos;
    if (isPlain && program.find("system") == std::string_view::npos) return std::nullopt;
    return AwkReader(program).read();
}

}  // namespace brindlet
