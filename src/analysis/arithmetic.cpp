// The arithmetic of (( )) and $(( )): one operator at most, no parentheses, 64-bit signed values.
#include <cstdint>
#include <limits>

#include "analysis/basher_analysis.h"
#include "text/characters.h"
#include "text/regex.h"
#include "text/strings.h"
#include "text/utf8.h"

namespace brindlet {

namespace {

using ErrorKind = BasherAnalysisError::Kind;

const Regex& incrementForm() {
    static const Regex form(R"(^\s*([\w\d_]+)\s*(\+\+|--)\s*$)");
    return form;
}
const Regex& assignmentForm() {
    static const Regex form(R"(^\s*([\w\d_]+)\s*(\+=|\-=|\*=|\/=|=)\s*(.*)$)");
    return form;
}
const Regex& operationForm() {
    static const Regex form(R"(^\s*([\w\d_]+)\s*(\+|-|\/|\*|\%|==|<=|>=|<|>|!=)\s*([\w\d_]+)\s*$)");
    return form;
}
const Regex& operandForm() {
    static const Regex form(R"(^\s*([\w\d_]+)\s*$)");
    return form;
}

std::int64_t wrapped(std::uint64_t bits) {
    return static_cast<std::int64_t>(bits);
}
std::uint64_t bits(std::int64_t value) {
    return static_cast<std::uint64_t>(value);
}

// As two's complement has it: what does not fit wraps, but for what a processor can't divide.
std::int64_t combined(std::int64_t left, std::string_view op, std::int64_t right, const std::string& whole) {
    if (op == "+") return wrapped(bits(left) + bits(right));
    if (op == "-") return wrapped(bits(left) - bits(right));
    if (op == "*") return wrapped(bits(left) * bits(right));
    if (op == "/" || op == "%") {
        if (right == 0) throw BasherAnalysisExpansionError{"In expression " + whole + ", division by zero"};
        if (left == std::numeric_limits<std::int64_t>::min() && right == -1)
            throw BasherAnalysisExpansionError{"In expression " + whole + ", division overflow"};
        return op == "/" ? left / right : left % right;
    }
    if (op == "==") return left == right;
    if (op == "!=") return left != right;
    if (op == "<=") return left <= right;
    if (op == ">=") return left >= right;
    return op == "<" ? left < right : left > right;
}

bool beginsWithNumber(std::string_view text) {
    return !text.empty() && isDecimalDigit(decodeScalar(text, 0).value);
}

BasherAnalysis::ArithmeticResult resultOf(std::int64_t value) {
    return {value != 0 ? 0 : 1, std::to_string(value)};
}

}  // namespace

BasherAnalysis::ArithmeticResult BasherAnalysis::evaluateArithmetic(const std::string& text) {
    if (const auto step = incrementForm().find(text)) {
        const std::string name(*step->group(1));
        const std::string stored = variable(name).value_or("0");
        const auto value = parsedInteger(stored);
        if (!value)
            throw BasherAnalysisExpansionError{"In expression " + text + ", expected a number but saw " + stored};
        const std::uint64_t one = *step->group(2) == "++" ? 1 : ~std::uint64_t{0};
        setVariable(name, std::to_string(wrapped(bits(*value) + one)));
        return resultOf(*value);
    }
    if (const auto assignment = assignmentForm().find(text)) {
        const std::string name(*assignment->group(1));
        const std::string op(*assignment->group(2));
        // `a == b` reads as an assignment of "= b", which is no expression: it goes on as a comparison.
        if (const auto right = evaluateExpression(std::string(*assignment->group(3)), text)) {
            if (beginsWithNumber(name))
                throw BasherAnalysisExpansionError{"Invalid expression: " + text + " - cannot assign to a number"};
            const std::int64_t value =
                op == "=" ? *right : combined(evaluateOperand(name), op.substr(0, 1), *right, text);
            setVariable(name, std::to_string(value));
            return resultOf(value);
        }
    }
    if (const auto value = evaluateExpression(text, text)) return resultOf(*value);
    throw BasherAnalysisError{
        ErrorKind::unimplemented,
        "Arithmetic expression has limited support in Brindlet, the following isn't supported: ((" + text + "))"};
}

std::optional<std::int64_t> BasherAnalysis::evaluateExpression(const std::string& text,
                                                               const std::string& whole) const {
    if (const auto operation = operationForm().find(text))
        return combined(evaluateOperand(std::string(*operation->group(1))), *operation->group(2),
                        evaluateOperand(std::string(*operation->group(3))), whole);
    if (const auto operand = operandForm().find(text)) return evaluateOperand(std::string(*operand->group(1)));
    return std::nullopt;
}

std::int64_t BasherAnalysis::evaluateOperand(const std::string& text) const {
    if (const auto number = parsedInteger(text)) return *number;
    const std::string value = variable(text).value_or("");
    // A shell evaluates the value as an expression in its turn, and runs what stands in a subscript there.
    if (contains(value, "$(") || contains(value, "`"))
        throw BasherAnalysisError{ErrorKind::highRisk, "The shell would run a command in the value of '" + text +
                                                           "', which this prediction can't show"};
    return parsedInteger(value).value_or(0);
}

}  // namespace brindlet
