#include "analysis/spliced_names.h"

#include <algorithm>

#include "shell/printing.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::string_view splicedReference = "${SPACE_SEPARATED_FILE_NAMES}";

// What no shell acts on, whichever quotes it stands in; the quotes round each name are the splicing's own.
bool isPlain(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 || (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           std::string_view("\"/._-+,@%=:").find(c) != std::string_view::npos;
}

// Follows a shell's quoting over the printed line: the tree's own quotes are all that it has.
class QuoteFollower {
  public:
    explicit QuoteFollower(std::string_view text) : text_(text) {}

    bool findsQuotedReference() {
        for (at_ = 0; at_ < text_.size(); ++at_) {
            if (text_.substr(at_).starts_with(splicedReference)) {
                if (inSingle_ || inDouble()) return true;
            }
            step();
        }
        return false;
    }

  private:
    bool inDouble() const { return !doubles_.empty() && doubles_.back() == '"'; }

    void step() {
        const char c = text_[at_];
        if (inSingle_) {
            inSingle_ = c != '\'';
        } else if (c == '\\') {
            ++at_;
        } else if (c == '\'' && !inDouble()) {
            inSingle_ = true;
        } else if (c == '"') {
            if (inDouble())
                doubles_.pop_back();
            else
                doubles_ += c;
        } else if (c == '(') {  // a substitution begins anew, also inside quotes
            if (!inDouble() || (at_ > 0 && text_[at_ - 1] == '$')) doubles_ += c;
        } else if (c == ')' && !doubles_.empty() && doubles_.back() == '(') {
            doubles_.pop_back();
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
    bool inSingle_ = false;
    std::string doubles_;  // the open double quotes and parentheses, the innermost last
};

}  // namespace

std::optional<std::string> splicedNamesHazard(const BashStatementList& list, std::string_view quotedNames) {
    if (std::all_of(quotedNames.begin(), quotedNames.end(), isPlain)) return std::nullopt;
    const std::string printed = print(list);
    if (!contains(printed, splicedReference) || !QuoteFollower(printed).findsQuotedReference()) return std::nullopt;
    return "The names of the selected files would close the quotes round " + std::string(splicedReference) +
           ", so the shell might run a part of a name. Write it without quotes.";
}

}  // namespace brindlet
