// One instruction and its answer over whatever link a device's driver and
// settings decide: the port layer's handles, a vendor bridge, or the TCP/IP
// link to the device's "IP_ADDR"/"IP_PORT". The device readers and the
// script's dialogue functions use it.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "kerfline/kerfline.h"
#include "script/evaluator.hpp"

namespace kerfline::device {

struct ExchangeWaits {
  // Polled between short waits (at most 50 ms each): true ends the exchange.
  std::function<bool()> cancelled;
  // Handle links read through QueryDevice (its fixed rounds) instead of
  // the loop that honours the request's time-out and terminator.
  bool port_query = false;
};

// Holding Ctrl and Shift lets the user type the answer instead
// (ManualAnswer). Nothing when the link could not be opened, the device
// said nothing in time, or the exchange was cancelled.
std::optional<std::string> exchange(const VMV6DRV* drv, const std::string& device,
                                    const script::DialogueRequest& request, const ExchangeWaits& waits);

}  // namespace kerfline::device
