// The items of a folder with marks, from which people pick the selection.
//
//     ItemPicker picker;
//     picker.open(names, {"a.txt"});
//     picker.take({Key::Kind::text, " "});   // marks or unmarks
//     auto chosen = picker.marked();
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "ui/terminal/key.h"
#include "ui/terminal/text_field.h"

namespace brindlet {

class ItemPicker {
  public:
    // Folders end in "/".
    void open(std::vector<std::string> names, const std::vector<std::string>& marked);

    // A blank marks, other text narrows the list to names that hold it (whatever its case), Control-A marks all that
    // are shown, or none if they all were.
    void take(const Key& key);

    // In the folder's order.
    std::vector<std::string> marked() const;
    bool isMarked(const std::string& name) const { return marked_.contains(name); }
    const std::vector<std::string>& shown() const { return shown_; }
    std::size_t cursor() const { return cursor_; }
    const TextField& filter() const { return filter_; }

  private:
    void narrow();
    void toggle(const std::string& name);
    void toggleAll();
    void move(std::size_t to);

    std::vector<std::string> names_;
    std::vector<std::string> shown_;
    std::set<std::string> marked_;
    TextField filter_;
    std::size_t cursor_ = 0;
};

}  // namespace brindlet
