// Reads one bash command line into the tree of shell/syntax_tree.h, or refuses it with an error whose text tells what
// was expected and what stood there. It accepts a subset of bash and is strict in some places where bash is not:
// what it refuses can't be simulated.
//
//     Basher basher("mv a b");
//     BashStatementList tree = basher.parse();  // throws BasherError
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "shell/syntax_tree.h"

namespace brindlet {

class BasherError : public std::exception {
  public:
    enum class Kind { expected, unsupported, unimplemented, noRootPipeline };

    BasherError(Kind kind, std::string text);

    Kind kind() const { return kind_; }
    const std::string& text() const { return text_; }
    // What the user reads: the text itself, or for `unimplemented` "Unimplemented bash feature: " and the text.
    const std::string& description() const { return description_; }
    const char* what() const noexcept override { return description_.c_str(); }

    bool operator==(const BasherError& other) const { return kind_ == other.kind_ && text_ == other.text_; }

  private:
    Kind kind_;
    std::string text_;
    std::string description_;
};

// Made for one command and used once.
class Basher {
  public:
    // Substitutions, parentheses, quotes and compound statements may nest this deep; deeper is `unsupported`.
    static constexpr int maxNesting = 200;

    explicit Basher(std::string bashCommand) : bashCommand_(std::move(bashCommand)) {}

    // The unchanged input, not trimmed.
    const std::string& bashCommand() const { return bashCommand_; }

    // The whole text as a tree. Throws BasherError. Takes time linear in the text's length.
    BashStatementList parse();

    // What `parse` left over behind the last statement that it could read: "" in a line that was read to its end. It is
    // in no tree and prints nowhere.
    std::string_view unparsedRemainder() const { return std::string_view(bashCommand_).substr(remainderAt_); }

  private:
    std::string bashCommand_;
    std::size_t remainderAt_ = 0;
};

}  // namespace brindlet
