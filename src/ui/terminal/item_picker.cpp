#include "ui/terminal/item_picker.h"

#include <algorithm>
#include <utility>

#include "text/characters.h"
#include "text/strings.h"

namespace brindlet {

namespace {

constexpr std::size_t pageOfItems = 10;

}  // namespace

void ItemPicker::open(std::vector<std::string> names, const std::vector<std::string>& marked) {
    names_ = std::move(names);
    marked_ = {marked.begin(), marked.end()};
    filter_.set("");
    narrow();
}

void ItemPicker::take(const Key& key) {
    switch (key.kind) {
        case Key::Kind::up:
            return move(cursor_ == 0 ? 0 : cursor_ - 1);
        case Key::Kind::down:
            return move(cursor_ + 1);
        case Key::Kind::pageUp:
            return move(cursor_ < pageOfItems ? 0 : cursor_ - pageOfItems);
        case Key::Kind::pageDown:
            return move(cursor_ + pageOfItems);
        case Key::Kind::home:
            return move(0);
        case Key::Kind::end:
            return move(shown_.size());
        default:
            break;
    }
    if (key == Key{Key::Kind::text, " "}) {
        if (cursor_ < shown_.size()) toggle(shown_[cursor_]);
        return move(cursor_ + 1);
    }
    if (key == Key{Key::Kind::control, "a"}) return toggleAll();
    const std::string before = filter_.text();
    filter_.take(key);
    if (filter_.text() != before) narrow();
}

std::vector<std::string> ItemPicker::marked() const {
    std::vector<std::string> chosen;
    std::ranges::copy_if(names_, std::back_inserter(chosen), [this](const auto& name) { return isMarked(name); });
    return chosen;
}

void ItemPicker::narrow() {
    const std::string wanted = lowercased(filter_.text());
    shown_.clear();
    std::ranges::copy_if(names_, std::back_inserter(shown_),
                         [&](const std::string& name) { return contains(lowercased(name), wanted); });
    cursor_ = 0;
}

void ItemPicker::toggle(const std::string& name) {
    if (!marked_.insert(name).second) marked_.erase(name);
}

void ItemPicker::toggleAll() {
    const bool areAllMarked = std::ranges::all_of(shown_, [this](const auto& name) { return isMarked(name); });
    for (const std::string& name : shown_) {
        if (areAllMarked)
            marked_.erase(name);
        else
            marked_.insert(name);
    }
}

void ItemPicker::move(std::size_t to) {
    cursor_ = shown_.empty() ? 0 : std::min(to, shown_.size() - 1);
}

}  // namespace brindlet
