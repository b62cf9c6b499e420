#include "query.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "attributes.h"
#include "pattern.h"
#include "shared/tool.h"
#include "text/characters.h"
#include "text/regex.h"
#include "text/strings.h"

namespace brindlet::tools {

namespace {

constexpr int deepestQuery = 100;

enum class Operator { equal, unequal, less, greater, lessOrEqual, greaterOrEqual };
struct OperatorRow {
    std::string_view text;
    Operator meaning;
};
// The longer ones first.
constexpr OperatorRow operatorRows[] = {
    {"==", Operator::equal}, {"!=", Operator::unequal}, {"<=", Operator::lessOrEqual}, {">=", Operator::greaterOrEqual},
    {"=", Operator::equal},  {"<", Operator::less},     {">", Operator::greater},
};

struct KindRow {
    std::string_view words;  // separated by blanks
    std::string_view types;  // any of them is the file's or one of its ancestors
};
constexpr KindRow kindRows[] = {
    {"image images photo photos picture pictures", "public.image"},
    {"movie movies video videos", "public.movie"},
    {"music audio song songs", "public.audio"},
    {"pdf pdfs", "com.adobe.pdf"},
    {"folder folders", "public.folder"},
    {"text texts", "public.text"},
    {"spreadsheet spreadsheets", "public.spreadsheet"},
    {"presentation presentations", "public.presentation"},
    {"document documents doc docs", "public.text public.composite-content public.spreadsheet public.presentation"},
    {"archive archives", "public.archive"},
    {"font fonts", "public.font"},
};

ToolFailure notUnderstood(std::string_view text) {
    return {"'" + std::string(text) + "' in the query can't be understood", statusWrongUsage};
}

bool isOneOf(std::string_view words, std::string_view word) {
    const std::vector<std::string> all = splitNonEmpty(words, " ");
    return std::find(all.begin(), all.end(), word) != all.end();
}

bool holds(Operator comparison, double left, double right) {
    switch (comparison) {
        case Operator::equal:
            return left == right;
        case Operator::unequal:
            return left != right;
        case Operator::less:
            return left < right;
        case Operator::greater:
            return left > right;
        case Operator::lessOrEqual:
            return left <= right;
        case Operator::greaterOrEqual:
            return left >= right;
    }
    return false;
}

}  // namespace

Query Query::tested(Test test, int cost) {
    Query query;
    query.test_ = std::move(test);
    query.cost_ = cost;
    return query;
}

Query Query::joined(Kind kind, std::vector<Query> parts) {
    if (parts.size() == 1 && kind != Kind::none) return std::move(parts.front());
    std::stable_sort(parts.begin(), parts.end(),
                     [](const Query& left, const Query& right) { return left.cost_ < right.cost_; });
    Query query;
    query.kind_ = kind;
    for (const Query& part : parts) query.cost_ = std::max(query.cost_, part.cost_);
    query.parts_ = std::move(parts);
    return query;
}

Query Query::both(Query left, Query right) {
    std::vector<Query> parts;
    parts.push_back(std::move(left));
    parts.push_back(std::move(right));
    return joined(Kind::all, std::move(parts));
}

bool Query::matches(Candidate& candidate) const {
    const auto matchesPart = [&](const Query& part) { return part.matches(candidate); };
    switch (kind_) {
        case Kind::test:
            return test_(candidate);
        case Kind::all:
            return std::all_of(parts_.begin(), parts_.end(), matchesPart);
        case Kind::any:
            return std::any_of(parts_.begin(), parts_.end(), matchesPart);
        case Kind::none:
            return std::none_of(parts_.begin(), parts_.end(), matchesPart);
    }
    return false;
}

// Reads a query from left to right.
class QueryParser {
  public:
    QueryParser(std::string_view text, std::time_t now) : text_(text), now_(now) {}

    Query parse() {
        Query query = any();
        skipBlanks();
        if (!atEnd()) throw notUnderstood(rest());
        return query;
    }

  private:
    using Kind = Query::Kind;

    bool atEnd() const { return at_ >= text_.size(); }
    std::string_view rest() const { return text_.substr(at_); }
    void skipBlanks() {
        while (!atEnd() && (text_[at_] == ' ' || (text_[at_] >= '\t' && text_[at_] <= '\r'))) ++at_;
    }
    // Goes past `symbol`, and blanks before it, where it comes next.
    bool takes(std::string_view symbol) {
        skipBlanks();
        if (!rest().starts_with(symbol)) return false;
        at_ += symbol.size();
        return true;
    }
    bool takesWord(std::string_view word) {
        skipBlanks();
        if (!rest().starts_with(word)) return false;
        const std::string_view behind = rest().substr(word.size());
        if (!behind.empty() && behind.front() != ' ' && behind.front() != '(') return false;
        at_ += word.size();
        return true;
    }

    Query any() {
        std::vector<Query> parts;
        do {
            parts.push_back(all());
        } while (takes("||") || takesWord("OR"));
        return Query::joined(Kind::any, std::move(parts));
    }

    Query all() {
        std::vector<Query> parts;
        for (;;) {
            parts.push_back(single());
            if (takes("&&") || takesWord("AND")) continue;
            skipBlanks();
            const std::size_t before = at_;
            if (atEnd() || rest().starts_with(')') || rest().starts_with("||") || takesWord("OR")) {
                at_ = before;
                return Query::joined(Kind::all, std::move(parts));
            }
        }
    }

    Query single() {
        if (++depth_ > deepestQuery) throw ToolFailure{"the query is nested too deeply", statusWrongUsage};
        Query query = takes("!") || takesWord("NOT") || takes("-") ? negated(single()) : primary();
        --depth_;
        return query;
    }

    static Query negated(Query query) {
        std::vector<Query> parts;
        parts.push_back(std::move(query));
        return Query::joined(Kind::none, std::move(parts));
    }

    Query primary() {
        skipBlanks();
        if (atEnd()) throw ToolFailure{"the query ends too early", statusWrongUsage};
        if (takes("(")) {
            Query inner = any();
            if (!takes(")")) throw ToolFailure{"a ')' is missing in the query", statusWrongUsage};
            return inner;
        }
        if (rest().starts_with('"') || rest().starts_with('\'')) return wordQuery(quoted());
        if (takes("InRange(")) return range();
        return named();
    }

    // What begins with a name: a comparison, "kind:image", or a plain word.
    Query named() {
        const std::size_t begin = at_;
        while (!atEnd() && !contains(" \t\n\r()\"'=<>!:", text_.substr(at_, 1)) && !endsValue()) ++at_;
        const std::string_view name = text_.substr(begin, at_ - begin);
        const std::size_t behindName = at_;
        skipBlanks();
        const auto* row = std::find_if(std::begin(operatorRows), std::end(operatorRows),
                                       [&](const OperatorRow& each) { return rest().starts_with(each.text); });
        if (row != std::end(operatorRows) && !name.empty()) {
            at_ += row->text.size();
            return comparison(attributeNamed(name), row->meaning);
        }
        at_ = behindName;
        if (rest().starts_with(':') && !name.empty())
            if (auto query = keyed(lowercased(name))) return std::move(*query);
        while (!atEnd() && !contains(" \t\n\r()", text_.substr(at_, 1)) && !endsValue()) ++at_;
        if (at_ == begin) throw notUnderstood(rest());
        // "kMDItemFSName like ..." is written for another language; taken as words it would find nothing.
        if (lowercased(name).starts_with("kmditem")) throw notUnderstood(text_.substr(begin));
        return wordQuery({std::string(text_.substr(begin, at_ - begin)), {}});
    }

    bool endsValue() const { return rest().starts_with("&&") || rest().starts_with("||"); }

    std::optional<Query> keyed(const std::string& key) {
        const std::size_t before = at_++;
        const std::string value = rest().starts_with('"') ? quoted().text : std::string(plainValue());
        if (key == "name") return Query::nameHolds(value);
        if (key == "kind") return kindQuery(lowercased(value));
        if (key == "date") return dateQuery(lowercased(value));
        at_ = before;
        return std::nullopt;
    }

    struct Value {
        std::string text;
        Folding folding;
    };

    Value quoted() {
        const char quote = text_[at_++];
        Value value;
        for (; !atEnd() && text_[at_] != quote; ++at_) {
            // A pattern reads the escapes of all but the quote itself.
            if (text_[at_] == '\\' && at_ + 1 < text_.size() && text_[++at_] != quote) value.text += '\\';
            value.text += text_[at_];
        }
        if (atEnd()) throw ToolFailure{"a quote has no end in the query", statusWrongUsage};
        for (++at_; !atEnd() && contains("cdw", text_.substr(at_, 1)); ++at_) {
            value.folding.ignoresCase |= text_[at_] == 'c';
            value.folding.ignoresMarks |= text_[at_] == 'd';
        }
        return value;
    }

    std::string_view plainValue() {
        const std::size_t begin = at_;
        int depth = 0;  // "$time.today(-1)" has parentheses of its own
        for (; !atEnd() && !contains(" \t\n\r", text_.substr(at_, 1)) && !endsValue(); ++at_) {
            if (text_[at_] == '(') ++depth;
            if ((text_[at_] == ')' || text_[at_] == ',') && depth == 0) break;
            if (text_[at_] == ')') --depth;
        }
        return text_.substr(begin, at_ - begin);
    }

    Value value() {
        skipBlanks();
        if (rest().starts_with('"') || rest().starts_with('\'')) return quoted();
        const std::string_view plain = plainValue();
        if (plain.empty()) throw ToolFailure{"a value is missing in the query", statusWrongUsage};
        return {std::string(plain), {}};
    }

    // The marks may also stand at the operator: "==[cd]".
    Folding operatorMarks() {
        static const Regex bracketed(R"(^\[[cdw]+\])");
        const auto match = bracketed.find(rest());
        const std::string_view marks = match ? *match->group(0) : "";
        at_ += marks.size();
        return {.ignoresCase = contains(marks, "c"), .ignoresMarks = contains(marks, "d")};
    }

    Query comparison(const AttributeRow& row, Operator meaning) {
        const Folding marks = operatorMarks();
        Value wanted = value();
        wanted.folding.ignoresCase |= marks.ignoresCase;
        wanted.folding.ignoresMarks |= marks.ignoresMarks;
        if (!row.texts) return numberComparison(row, meaning, numberValue(row, wanted.text, now_));
        if (meaning != Operator::equal && meaning != Operator::unequal)
            throw ToolFailure{"texts can be compared by == and != only", statusWrongUsage};
        Query query = textComparison(row, Pattern(wanted.text, wanted.folding));
        return meaning == Operator::equal ? query : negated(std::move(query));
    }

    static Query textComparison(const AttributeRow& row, Pattern pattern) {
        return Query::tested(
            [texts = row.texts, isProse = row.isProse, pattern = std::move(pattern)](Candidate& candidate) {
                const std::vector<std::string> all = texts(candidate);
                return std::any_of(all.begin(), all.end(), [&](const std::string& text) {
                    return isProse ? pattern.isIn(text) : pattern.isWhole(text);
                });
            },
            row.cost);
    }

    static Query numberComparison(const AttributeRow& row, Operator meaning, double wanted) {
        return Query::tested([number = row.number, meaning,
                              wanted](Candidate& candidate) { return holds(meaning, number(candidate), wanted); },
                             row.cost);
    }

    // Behind "InRange(": an attribute and the two ends, both included.
    Query range() {
        skipBlanks();
        const AttributeRow& row = attributeNamed(trimmed(plainValue()));
        double ends[2]{};
        for (double& end : ends) {
            if (!takes(",")) throw ToolFailure{"InRange takes an attribute and two ends", statusWrongUsage};
            end = numberValue(row, value().text, now_);
        }
        if (!takes(")") || !row.number) throw ToolFailure{"InRange takes an attribute and two ends", statusWrongUsage};
        return Query::both(numberComparison(row, Operator::greaterOrEqual, ends[0]),
                           numberComparison(row, Operator::lessOrEqual, ends[1]));
    }

    static Query kindQuery(const std::string& word) {
        const auto* row = std::find_if(std::begin(kindRows), std::end(kindRows),
                                       [&](const KindRow& each) { return isOneOf(each.words, word); });
        if (row == std::end(kindRows)) throw notUnderstood("kind:" + word);
        return Query::tested(
            [types = splitNonEmpty(row->types, " ")](Candidate& candidate) {
                const std::vector<std::string> tree = contentTypeTree(candidate.type());
                return std::any_of(types.begin(), types.end(), [&](const std::string& type) {
                    return std::find(tree.begin(), tree.end(), type) != tree.end();
                });
            },
            cheapest);
    }

    // Made or changed at that time.
    Query dateQuery(const std::string& word) const {
        const auto period = periodNamed(word, now_);
        if (!period) throw notUnderstood("date:" + word);
        return Query::tested(
            [period = *period](Candidate& candidate) {
                const auto isIn = [&](double time) { return time >= period.begin && time < period.end; };
                return isIn(candidate.times().changed) || isIn(candidate.times().made);
            },
            needsStatus);
    }

    // A word, or several in a row, that begin in the name or in the text.
    static Query wordQuery(const Value& wanted) {
        const std::string stars = wanted.text.ends_with('*') ? "" : "*";
        const auto pattern =
            std::make_shared<Pattern>(wanted.text + stars, Folding{.ignoresCase = true, .ignoresMarks = true});
        return Query::tested(
            [pattern](Candidate& candidate) {
                return pattern->isIn(candidate.name()) || pattern->isIn(candidate.text());
            },
            needsText);
    }

    std::string_view text_;
    std::time_t now_;
    std::size_t at_ = 0;
    int depth_ = 0;
};

Query Query::parse(std::string_view text, std::time_t now) {
    return QueryParser(text, now).parse();
}

Query Query::nameHolds(std::string_view text) {
    const auto pattern =
        std::make_shared<Pattern>("*" + std::string(text) + "*", Folding{.ignoresCase = true, .ignoresMarks = true});
    return tested([pattern](Candidate& candidate) { return pattern->isWhole(candidate.name()); }, cheapest);
}

}  // namespace brindlet::tools
