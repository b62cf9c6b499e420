// The windows of an X11 desktop, by the hints that window managers keep (Extended Window Manager Hints 1.5).
//
//     XWindowSource source;
//     if (!source.canFollow()) ...
//     tracker.start(...);
//     loop.watch(source.descriptor(), [&] { source.readEvents(); });
#pragma once

#include <memory>

#include "desktop/window_source.h"

namespace brindlet {

// On one thread. With 20 windows, two of them the file manager's, a look takes 0.1 ms, since all is asked at once.
class XWindowSource final : public WindowSource {
  public:
    // Rectangles as the server has them, in pixels, are told as `toPoints` turns them.
    using ToPoints = std::function<Rectangle(const Rectangle&)>;
    explicit XWindowSource(ToPoints toPoints = nullptr, const char* display = nullptr);
    ~XWindowSource() override;

    // Whether there is a display, and a window manager that tells of windows.
    bool canFollow();
    std::optional<FolderWindowDetails> frontFolderWindowDetails();

    WindowsLook look() override;
    std::optional<Failure> watch(std::function<void()> onChange) override;
    bool close(WindowId window) override;
    void activate(WindowId window) override;

    // Readable when there is something for `readEvents`, which calls what `watch` was given; -1 without a display.
    int descriptor() const;
    void readEvents();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace brindlet
