// A terminal as a surface to draw on and a source of keys, by ncurses: so every kind of terminal that it knows will do.
//
//     TerminalScreen screen(hasColor, hasUnicode);
//     screen.draw(frame);
//     for (const Key& key : screen.keys()) take(key);
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ui/terminal/bar_view.h"
#include "ui/terminal/key.h"

namespace brindlet {

// Thrown where the terminal can't be drawn on; one sentence.
struct ScreenError {
    std::string sentence;
};

// One at a time. The terminal is as it was before once it is gone.
class TerminalScreen {
  public:
    TerminalScreen(bool hasColor, bool hasUnicode);
    ~TerminalScreen();
    TerminalScreen(const TerminalScreen&) = delete;
    TerminalScreen& operator=(const TerminalScreen&) = delete;

    BarSize size() const;
    void draw(const BarFrame& frame);

    // What has been typed since the last call. What is pasted comes as one text, so that a line end in it confirms
    // nothing.
    std::vector<Key> keys();
    // Forgets what has been typed and not been asked for.
    void dropKeys();

    // Readable when the size of the terminal changes; `keys` then gives Key::Kind::resized.
    int resizeDescriptor() const;

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace brindlet
