#include "text/regex.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <algorithm>
#include <chrono>
#include <cstdint>

#include "text/utf8.h"

namespace brindlet {

namespace {

template <auto release>
struct Releaser {
    template <class Object>
    void operator()(Object* object) const {
        release(object);
    }
};
using CodePointer = std::unique_ptr<pcre2_code, Releaser<pcre2_code_free>>;
using CompileContextPointer = std::unique_ptr<pcre2_compile_context, Releaser<pcre2_compile_context_free>>;
using MatchContextPointer = std::unique_ptr<pcre2_match_context, Releaser<pcre2_match_context_free>>;
using MatchDataPointer = std::unique_ptr<pcre2_match_data, Releaser<pcre2_match_data_free>>;
using JitStackPointer = std::unique_ptr<pcre2_jit_stack, Releaser<pcre2_jit_stack_free>>;

constexpr std::uint32_t mostSteps = 10'000'000;
constexpr std::uint32_t mostHeapKibibytes = 64 * 1024;
constexpr std::size_t firstJitStackBytes = 32 * 1024;
constexpr std::size_t mostJitStackBytes = 4 * 1024 * 1024;

PCRE2_SPTR codeUnits(std::string_view text) {
    // An empty view may have no address, which PCRE2 10.42 refuses.
    return reinterpret_cast<PCRE2_SPTR>(text.data() ? text.data() : "");
}

pcre2_jit_stack* jitStackOfThread(void*) {
    thread_local const JitStackPointer stack(pcre2_jit_stack_create(firstJitStackBytes, mostJitStackBytes, nullptr));
    return stack.get();
}

// PCRE2 counts the steps anew from every byte at which a match might begin, which leaves a long text quadratic at best.
// So every pattern opens with a callout, which asks here before each beginning whether the time is up.
class Budget {
  public:
    static constexpr std::string_view patternPrefix = "(?C1)";

    explicit Budget(std::size_t subjectBytes) : end_(Clock::now() + base + perByte * subjectBytes) {}

    static int spend(pcre2_callout_block*, void* data) {
        Budget& budget = *static_cast<Budget*>(data);
        const bool isTimeUp = ++budget.beginnings_ % beginningsPerLook == 0 && Clock::now() > budget.end_;
        return isTimeUp ? PCRE2_ERROR_MATCHLIMIT : 0;
    }

  private:
    using Clock = std::chrono::steady_clock;
    static constexpr unsigned beginningsPerLook = 8;
    static constexpr std::chrono::seconds base{1};
    static constexpr std::chrono::microseconds perByte{1};  // some ten times what a plain pattern takes

    Clock::time_point end_;
    unsigned beginnings_ = 0;
};

pcre2_match_context* limitsOfThread(Budget& budget) {
    thread_local const MatchContextPointer context = [] {
        MatchContextPointer made(pcre2_match_context_create(nullptr));
        pcre2_set_match_limit(made.get(), mostSteps);
        pcre2_set_depth_limit(made.get(), mostSteps);
        pcre2_set_heap_limit(made.get(), mostHeapKibibytes);
        pcre2_jit_stack_assign(made.get(), jitStackOfThread, nullptr);
        return made;
    }();
    pcre2_set_callout(context.get(), Budget::spend, &budget);
    return context.get();
}

// Room for the groups of a match, kept by each thread from one match to the next.
pcre2_match_data* matchDataOfThread(std::uint32_t pairs) {
    thread_local MatchDataPointer data;
    if (!data || pcre2_get_ovector_count(data.get()) < pairs)
        data.reset(pcre2_match_data_create(std::max(pairs, std::uint32_t{16}), nullptr));
    return data.get();
}

std::uint32_t compileOptions(const Regex::Options& options) {
    std::uint32_t bits = PCRE2_UTF | PCRE2_UCP | PCRE2_NEVER_BACKSLASH_C;
    if (options.ignoresCase) bits |= PCRE2_CASELESS;
    if (options.dotMatchesLineEnds) bits |= PCRE2_DOTALL;
    if (options.anchorsMatchLines) bits |= PCRE2_MULTILINE;
    return bits;
}

CodePointer compile(std::string_view pattern, const Regex::Options& options) {
    // Every line end of Unicode is one, as in `isNewline`, not only a line feed.
    const CompileContextPointer context(pcre2_compile_context_create(nullptr));
    pcre2_set_newline(context.get(), PCRE2_NEWLINE_ANY);
    int error = 0;
    std::size_t errorOffset = 0;
    const std::string watched = std::string(Budget::patternPrefix) + std::string(pattern);
    CodePointer code(pcre2_compile(codeUnits(watched), watched.size(), compileOptions(options), &error, &errorOffset,
                                   context.get()));
    // Without a JIT, as on a system that forbids writable code, PCRE2 interprets.
    if (code) pcre2_jit_compile(code.get(), PCRE2_JIT_COMPLETE);
    return code;
}

using Ranges = std::vector<std::pair<std::size_t, std::size_t>>;

std::optional<Ranges> rangesIn(pcre2_match_data* data, std::uint32_t pairs) {
    static_assert(PCRE2_UNSET == std::string_view::npos);
    const std::size_t* const offsets = pcre2_get_ovector_pointer(data);
    Ranges ranges;
    ranges.reserve(pairs);
    for (std::uint32_t pair = 0; pair < pairs; ++pair) ranges.emplace_back(offsets[2 * pair], offsets[2 * pair + 1]);
    if (ranges.front().first > ranges.front().second) return std::nullopt;  // by a \K in a look-ahead
    return ranges;
}

// The subject must be valid UTF-8 and `from` the begin of a scalar or the end.
std::optional<Ranges> matchedRanges(const pcre2_code* code, std::uint32_t pairs, std::string_view subject,
                                    std::size_t from, Budget& budget) {
    const auto run = [&](pcre2_match_data* data, std::uint32_t options) {
        if (!data) return PCRE2_ERROR_NOMEMORY;
        return pcre2_match(code, codeUnits(subject), subject.size(), from, options | PCRE2_NO_UTF_CHECK, data,
                           limitsOfThread(budget));
    };
    pcre2_match_data* const data = matchDataOfThread(pairs);
    const int result = run(data, 0);
    if (result > 0) return rangesIn(data, pairs);
    if (result != PCRE2_ERROR_JIT_STACKLIMIT) return std::nullopt;

    // The interpreter keeps its state on the heap and has more of it. What it took is given back at once.
    const MatchDataPointer large(pcre2_match_data_create(pairs, nullptr));
    return run(large.get(), PCRE2_NO_JIT) > 0 ? rangesIn(large.get(), pairs) : std::nullopt;
}

bool isDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

// A replacement template, read once: literal text and numbers of groups in turn.
struct TemplatePiece {
    std::string literal;
    std::optional<std::size_t> group;  // follows the literal
};

std::vector<TemplatePiece> parsedTemplate(std::string_view text, std::size_t lastGroup) {
    const std::size_t mostDigits = std::to_string(lastGroup).size();
    std::vector<TemplatePiece> pieces(1);
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\\') {
            if (++at < text.size()) pieces.back().literal += text[at];
        } else if (text[at] == '$' && at + 1 < text.size() && isDigit(text[at + 1])) {
            std::size_t number = 0;
            for (std::size_t digits = 0; digits < mostDigits && at + 1 < text.size() && isDigit(text[at + 1]); ++digits)
                number = number * 10 + static_cast<std::size_t>(text[++at] - '0');
            pieces.back().group = number;
            pieces.emplace_back();
        } else {
            pieces.back().literal += text[at];
        }
    }
    return pieces;
}

void appendFilled(std::string& result, const std::vector<TemplatePiece>& pieces, std::string_view subject,
                  const Ranges& ranges) {
    for (const TemplatePiece& piece : pieces) {
        result += piece.literal;
        if (!piece.group || *piece.group >= ranges.size()) continue;
        const auto [begin, end] = ranges[*piece.group];
        if (begin < end && end <= subject.size()) result += subject.substr(begin, end - begin);
    }
}

}  // namespace

struct Regex::Compiled {
    CodePointer code;
    std::uint32_t pairs = 1;  // the groups and the whole match

    Compiled(std::string_view pattern, const Options& options) : code(compile(pattern, options)) {
        std::uint32_t groups = 0;
        if (code && pcre2_pattern_info(code.get(), PCRE2_INFO_CAPTURECOUNT, &groups) == 0) pairs = groups + 1;
    }
};

std::optional<std::string_view> RegexMatch::group(std::size_t number) const {
    if (number >= ranges_.size()) return std::nullopt;
    const auto [begin, end] = ranges_[number];
    if (begin > end || end > subject_.size()) return std::nullopt;
    return subject_.substr(begin, end - begin);
}

std::optional<std::string_view> RegexMatch::group(std::string_view name) const {
    if (!regex_ || !regex_->isValid()) return std::nullopt;
    const std::string terminated(name);
    const int number = pcre2_substring_number_from_name(regex_->compiled_->code.get(),
                                                        reinterpret_cast<PCRE2_SPTR>(terminated.c_str()));
    if (number <= 0) return std::nullopt;
    return group(static_cast<std::size_t>(number));
}

Regex::Regex(std::string_view pattern) : Regex(pattern, Options{}) {}
Regex::Regex(std::string_view pattern, Options options) : compiled_(std::make_unique<Compiled>(pattern, options)) {}
Regex::~Regex() = default;
Regex::Regex(Regex&&) noexcept = default;
Regex& Regex::operator=(Regex&&) noexcept = default;

bool Regex::isValid() const {
    return compiled_ && compiled_->code;
}

std::optional<RegexMatch> Regex::find(std::string_view subject, std::size_t from) const {
    if (!isValid() || from > subject.size() || !isValidUtf8(subject)) return std::nullopt;
    while (from < subject.size() && (static_cast<unsigned char>(subject[from]) & 0xC0) == 0x80) ++from;
    Budget budget(subject.size());
    auto ranges = matchedRanges(compiled_->code.get(), compiled_->pairs, subject, from, budget);
    if (!ranges) return std::nullopt;
    RegexMatch match;
    match.subject_ = subject;
    match.ranges_ = std::move(*ranges);
    match.regex_ = this;
    return match;
}

std::string Regex::replacedFirst(std::string_view subject, std::string_view replacement) const {
    const auto match = find(subject);
    if (!match) return std::string(subject);
    std::string result(subject.substr(0, match->begin()));
    result += replacement;
    result += subject.substr(match->end());
    return result;
}

std::string Regex::replacedAll(std::string_view subject, std::string_view replacementTemplate) const {
    if (!isValid() || !isValidUtf8(subject)) return std::string(subject);
    const auto pieces = parsedTemplate(replacementTemplate, compiled_->pairs - 1);
    std::string result;
    Budget budget(subject.size());
    std::size_t copied = 0;
    for (std::size_t from = 0; from <= subject.size();) {
        const auto ranges = matchedRanges(compiled_->code.get(), compiled_->pairs, subject, from, budget);
        if (!ranges) break;
        const auto [begin, end] = ranges->front();
        if (begin < copied) break;  // a \K in a look-behind can lead back
        result += subject.substr(copied, begin - copied);
        appendFilled(result, pieces, subject, *ranges);
        copied = end;
        if (begin < end) {
            from = end;
        } else {
            from = end < subject.size() ? end + decodeScalar(subject, end).length : end + 1;
        }
    }
    result += subject.substr(copied);
    return result;
}

}  // namespace brindlet
