// One key as a person meant it, whatever bytes the terminal sends for it.
#pragma once

#include <string>

namespace brindlet {

struct Key {
    enum class Kind {
        text,  // one or more characters, typed or pasted; line ends in what is pasted are blanks
        enter,
        escape,
        tab,
        up,
        down,
        left,
        right,
        wordLeft,
        wordRight,
        home,
        end,
        pageUp,
        pageDown,
        backspace,
        remove,   // the character under the cursor
        control,  // with the letter in `text`
        resized,
        closed,  // the terminal has gone
    };
    Kind kind = Kind::text;
    std::string text{};

    bool operator==(const Key&) const = default;
};

}  // namespace brindlet
