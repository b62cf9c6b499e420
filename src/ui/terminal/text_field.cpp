#include "ui/terminal/text_field.h"

#include "text/characters.h"

namespace brindlet {

void TextField::set(const std::string& text) {
    if (text == text_) return;
    text_ = text;
    cursor_ = text_.size();
}

bool TextField::take(const Key& key) {
    const std::size_t before = cursor_ == 0 ? 0 : cursor_ - characterLengthBefore(text_, cursor_);
    const std::size_t behind = cursor_ == text_.size() ? cursor_ : cursor_ + characterLength(text_, cursor_);
    switch (key.kind) {
        case Key::Kind::text:
            text_.insert(cursor_, key.text);
            cursor_ += key.text.size();
            return true;
        case Key::Kind::left:
            cursor_ = before;
            return true;
        case Key::Kind::right:
            cursor_ = behind;
            return true;
        case Key::Kind::wordLeft:
            cursor_ = wordBegin();
            return true;
        case Key::Kind::wordRight:
            cursor_ = wordEnd();
            return true;
        case Key::Kind::home:
            cursor_ = 0;
            return true;
        case Key::Kind::end:
            cursor_ = text_.size();
            return true;
        case Key::Kind::backspace:
            erase(before, cursor_);
            return true;
        case Key::Kind::remove:
            erase(cursor_, behind);
            return true;
        case Key::Kind::control:
            return takeControl(key.text.front());
        default:
            return false;
    }
}

bool TextField::takeControl(char letter) {
    switch (letter) {
        case 'a':
            cursor_ = 0;
            return true;
        case 'e':
            cursor_ = text_.size();
            return true;
        case 'u':
            erase(0, cursor_);
            return true;
        case 'k':
            erase(cursor_, text_.size());
            return true;
        case 'w':
            erase(wordBegin(), cursor_);
            return true;
        default:
            return false;
    }
}

void TextField::erase(std::size_t from, std::size_t to) {
    text_.erase(from, to - from);
    cursor_ = from;
}

std::size_t TextField::wordBegin() const {
    std::size_t at = cursor_;
    while (at > 0 && text_[at - 1] == ' ') --at;
    while (at > 0 && text_[at - 1] != ' ') --at;
    return at;
}

std::size_t TextField::wordEnd() const {
    std::size_t at = cursor_;
    while (at < text_.size() && text_[at] == ' ') ++at;
    while (at < text_.size() && text_[at] != ' ') ++at;
    return at;
}

}  // namespace brindlet
