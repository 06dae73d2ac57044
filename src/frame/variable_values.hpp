// How an item's text becomes the value a host asked for, and back.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "driver/drv_item.hpp"
#include "kerfline/kerfline.h"

namespace kerfline::frame {

// The decimal number at the start of the text (blanks and a sign allowed,
// point as separator, exponent allowed); nothing when there is none.
std::optional<double> leading_number(const std::string& text);

// Integer and floating values of an item: a Date item gives its packed day |
// month << 8 | year << 16; any other item the leading number of its text (0
// when there is none), truncated toward zero and clamped for integers.
std::int32_t item_integer(const driver::CDrvItem& item);
double item_double(const driver::CDrvItem& item);

// Value type 10's choice by item type: Double 3, Integer 1, Bool 2, Date 5,
// anything else 4.
std::int32_t chosen_value_type(std::uint32_t item_type);

// The value fields of a request record.
struct ValueSlot {
  std::int32_t& value_type;
  VMV6VALUE& value;
};

// Writes the item's value as the slot's type asks (10 writes its choice
// back). 1 filled; -3 out of memory; for a code outside 1..10, nothing is
// filled and the result is 1 for code 0, else 0. `trim_dialog_text`: a
// dialog variable's text loses its leading and trailing blanks.
std::int32_t read_value(const driver::CDrvItem& item, ValueSlot slot, bool trim_dialog_text);

// The text that the slot's value sets on the item (10 chooses by the item's
// type and writes the choice back); nothing for a code that sets nothing or
// a null text.
std::optional<std::string> value_text(const driver::CDrvItem& item, ValueSlot slot);

// Sets the item's text; a dialog variable runs its input check (Integer
// variables refuse ".,;eE" with a message). False when refused.
bool set_item_text(driver::CDrvItem& item, const std::string& text);

}  // namespace kerfline::frame
