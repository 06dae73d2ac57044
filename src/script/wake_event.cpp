#include "script/wake_event.hpp"

namespace kerfline::script {

void WakeEvent::signal() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    signalled_ = true;
  }
  cv_.notify_all();
}

void WakeEvent::reset() {
  const std::lock_guard<std::mutex> lock(mutex_);
  signalled_ = false;
}

bool WakeEvent::wait_for(std::chrono::milliseconds ms, const std::function<bool()>& stop) {
  std::unique_lock<std::mutex> lock(mutex_);
  const bool woken = cv_.wait_for(lock, ms, [&] { return signalled_ || stop(); });
  signalled_ = false;
  return woken;
}

}  // namespace kerfline::script
