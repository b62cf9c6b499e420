// One line of text with a cursor, edited by the usual keys.
//
//     TextField field;
//     field.take({Key::Kind::text, "to pn"});
//     field.take({Key::Kind::left});
#pragma once

#include <cstddef>
#include <string>

#include "ui/terminal/key.h"

namespace brindlet {

class TextField {
  public:
    const std::string& text() const { return text_; }
    // In bytes, at the begin of a character or the end.
    std::size_t cursor() const { return cursor_; }

    // Another text, the cursor at its end; where it is the text already, the cursor stays.
    void set(const std::string& text);

    // False for a key that edits nothing. Control-A and E go to the ends, Control-U and K delete up to them, Control-W
    // deletes a word.
    bool take(const Key& key);

  private:
    void erase(std::size_t from, std::size_t to);
    bool takeControl(char letter);
    std::size_t wordBegin() const;
    std::size_t wordEnd() const;

    std::string text_;
    std::size_t cursor_ = 0;
};

}  // namespace brindlet
