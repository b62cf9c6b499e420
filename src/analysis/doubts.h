// What a prediction knows that it does not see: places where a shell may do more, or something else, than the rules of
// the simulation show. They change no result; they are said as side effects, so that a line never looks harmless
// because of what was not simulated.
//
// A doubt is raised while words are expanded, and is worth saying only if something could happen to them: the command
// that gets the words decides. Doubts about a value stay with the variable that holds it.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "shell/syntax_tree.h"

namespace brindlet {

class Doubts {
  public:
    void raise(std::string sentence);
    // The same about the escapes of a literal text: what a shell makes of it has the same characters, but for them.
    void raiseForEscapes(std::string sentence);
    // What was raised since the last call.
    std::vector<std::string> take();
    // Whether all of it was about escapes.
    bool concernEscapesAlone() const { return raised_.size() == raisedForEscapes_; }

    // What is in doubt about a variable's value is raised whenever the value is used.
    void taint(std::string_view variable, std::vector<std::string> sentences);
    void trust(std::string_view variable);
    void raiseFor(std::string_view variable);

    // Holds for every command from here on.
    void raiseForTheRest(std::string sentence);
    const std::vector<std::string>& forTheRest() const { return forTheRest_; }

  private:
    std::vector<std::string> raised_;
    std::size_t raisedForEscapes_ = 0;
    std::vector<std::string> forTheRest_;
    std::map<std::string, std::vector<std::string>, std::less<>> variables_;
};

// A token, quotes still in it, that a shell may expand to names that the simulation does not match: an unquoted
// wildcard together with a folder, a quote, or a form that is read differently.
std::optional<std::string> globDoubt(std::string_view token);

// A literal text whose escapes a shell reads otherwise than the simulation, which splits and unquotes the value again.
std::optional<std::string> escapeDoubt(const Text& text, bool isInDoubleQuotes);

// A value that is read again as if typed although a shell would take it as it is.
std::optional<std::string> valueDoubt(std::string_view value, std::string_view source, bool isInDoubleQuotes);

// ${name...}: raw text that a shell would expand or unquote first, and the results that differ from a shell's.
std::optional<std::string> operationDoubt(const std::string& name, const ParameterOperation& operation,
                                          std::string_view value, std::string_view result);

// A name that the simulation gives no value to and a shell does: "RANDOM", "files[@]", "!name".
std::optional<std::string> nameDoubt(std::string_view name, bool isSet);

// A variable whose assignment changes how the shell or the tools of the rest of the line work.
bool steersTheShell(std::string_view variable);

// What a file name or text looks like in a sentence.
std::string quotedForSentence(std::string_view text);

}  // namespace brindlet
