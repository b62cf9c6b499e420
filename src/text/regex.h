// Regular expressions over UTF-8 text, by PCRE2 with its JIT: look-ahead, named groups, lazy quantifiers, Unicode
// classes. Limits on steps, memory and time (a second and a microsecond for each byte) hold, so that no pattern or text
// makes a match run away. Every line end of Unicode is one to ".", "^" and "$". PCRE2's own settings at the begin of a
// pattern, such as "(*CRLF)", are not taken.
//
//     static const Regex assignment(R"(^\s*(\w+)\s*=(.*)$)");
//     if (auto match = assignment.find(text)) use(match->group(1));
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brindlet {

class RegexMatch {
  public:
    // The text of a group, 0 being the whole match; none if the group took no part or there is no such group.
    std::optional<std::string_view> group(std::size_t number) const;
    std::optional<std::string_view> group(std::string_view name) const;
    std::size_t begin() const { return ranges_.front().first; }  // byte offsets in the subject
    std::size_t end() const { return ranges_.front().second; }

  private:
    friend class Regex;
    std::string_view subject_;
    std::vector<std::pair<std::size_t, std::size_t>> ranges_;  // npos, npos where a group took no part
    const class Regex* regex_ = nullptr;
};

class Regex {
  public:
    struct Options {
        bool ignoresCase = false;
        bool dotMatchesLineEnds = false;
        bool anchorsMatchLines = false;
    };

    // Whether a pattern can be compiled is a question to `isValid`; an invalid one matches nothing.
    explicit Regex(std::string_view pattern);
    Regex(std::string_view pattern, Options options);
    ~Regex();
    Regex(Regex&&) noexcept;
    Regex& operator=(Regex&&) noexcept;

    bool isValid() const;

    // The first match at or behind byte `from`. The match points into `subject`, which must outlive it. A subject that
    // is no valid UTF-8 and a match that runs into the limits give none.
    std::optional<RegexMatch> find(std::string_view subject, std::size_t from = 0) const;
    bool matches(std::string_view subject) const { return find(subject).has_value(); }

    // The first match replaced by `replacement`, taken literally.
    std::string replacedFirst(std::string_view subject, std::string_view replacement) const;

    // All matches replaced by a template: "$" and digits stand for a group's text (nothing where there is no such
    // group), a backslash takes the character behind it literally, any other "$" is itself. As many digits are read as
    // the number of the last group has.
    std::string replacedAll(std::string_view subject, std::string_view replacementTemplate) const;

  private:
    friend class RegexMatch;
    struct Compiled;
    std::unique_ptr<Compiled> compiled_;
};

}  // namespace brindlet
