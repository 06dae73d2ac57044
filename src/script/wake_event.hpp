// An auto-reset event that a waiting device function blocks on, and that
// another thread (the host's user interface) can signal.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace kerfline::script {

class WakeEvent {
 public:
  void signal();
  // Waits up to ms or until signalled or stop() is true (checked under the
  // event's lock, so a stop set before signal() is never missed). True when
  // signalled or stopped; a signal is consumed.
  bool wait_for(std::chrono::milliseconds ms, const std::function<bool()>& stop);
  void reset();

 private:
  std::mutex mutex_;
  std::condition_variable cv_;
  bool signalled_ = false;
};

}  // namespace kerfline::script
