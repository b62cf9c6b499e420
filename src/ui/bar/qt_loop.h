// The flow's main loop over Qt's own.
#pragma once

#include <QObject>
#include <chrono>
#include <functional>

#include "platform/main_loop.h"

namespace brindlet {

// Lives on the thread of the QGuiApplication.
class QtLoop final : public QObject, public MainLoop {
  public:
    void post(std::function<void()> work) override;
    void postAfter(std::chrono::milliseconds delay, std::function<void()> work) override;
};

}  // namespace brindlet
