#include "adapters/qt/pumped_communications.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>
#include <chrono>
#include <exception>
#include <utility>

namespace vane {
namespace {

// Between two passes of the event loop, at most.
constexpr std::chrono::microseconds kBreath{200};

bool HasEventLoop() {
  const QCoreApplication* const application = QCoreApplication::instance();
  return application != nullptr && QThread::currentThread() == application->thread() &&
         QAbstractEventDispatcher::instance() != nullptr;
}

}  // namespace

CPumpedCommunications::CPumpedCommunications(std::unique_ptr<CVaneCommunications> line)
    : line_(std::move(line)), waker_(std::make_unique<QObject>()) {
  worker_ = std::thread([this] { Serve(); });
}

CPumpedCommunications::~CPumpedCommunications() {
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  changed_.notify_all();
  worker_.join();
}

std::string CPumpedCommunications::ReadSetting(ECommand id, bool flag, const std::string& text) {
  std::string reply;
  Run([&] { reply = line_->ReadSetting(id, flag, text); });
  return reply;
}

void CPumpedCommunications::WriteSetting(ECommand id) {
  Run([&] { line_->WriteSetting(id); });
}

CVaneCommunications& CPumpedCommunications::Idle() {
  if (busy_) {
    throw LibraryError(ERR_LINE_BUSY, "CPumpedCommunications",
                       "The line is busy: another exchange with the readout isn't over yet.");
  }
  return *line_;
}

void CPumpedCommunications::Run(const std::function<void()>& exchange) {
  Idle();
  if (!HasEventLoop()) return exchange();
  busy_ = true;
  {
    const std::lock_guard lock(mutex_);
    exchange_ = &exchange;
  }
  changed_.notify_all();
  std::unique_lock lock(mutex_);
  while (exchange_ != nullptr) {
    lock.unlock();
    Pump();
    lock.lock();
    // Events of the user that wait for their time end each pass at once: without this the loop
    // would run at full speed.
    changed_.wait_for(lock, kBreath, [this] { return exchange_ == nullptr; });
  }
  const std::exception_ptr failure = std::exchange(failure_, nullptr);
  lock.unlock();
  busy_ = false;
  // Else what the user did meanwhile would wait for the next event that the system reports.
  QAbstractEventDispatcher::instance()->wakeUp();
  if (failure) std::rethrow_exception(failure);
}

void CPumpedCommunications::Pump() noexcept {
  QAbstractEventDispatcher::instance()->processEvents(QEventLoop::ExcludeUserInputEvents |
                                                      QEventLoop::WaitForMoreEvents);
}

void CPumpedCommunications::Serve() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return ends_ || exchange_ != nullptr; });
    if (exchange_ == nullptr) return;
    const std::function<void()>& exchange = *exchange_;
    lock.unlock();
    std::exception_ptr failure;
    try {
      exchange();
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    failure_ = std::move(failure);
    exchange_ = nullptr;
    changed_.notify_all();
    // Under the lock, so that the waker is still there.
    QCoreApplication::postEvent(waker_.get(), new QEvent(QEvent::User));
  }
}

}  // namespace vane
