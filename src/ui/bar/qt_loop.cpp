#include "ui/bar/qt_loop.h"

#include <QMetaObject>
#include <QTimer>
#include <utility>

namespace brindlet {

void QtLoop::post(std::function<void()> work) {
    QMetaObject::invokeMethod(this, std::move(work), Qt::QueuedConnection);
}

void QtLoop::postAfter(std::chrono::milliseconds delay, std::function<void()> work) {
    post([this, delay, work = std::move(work)] { QTimer::singleShot(delay, this, work); });
}

}  // namespace brindlet
