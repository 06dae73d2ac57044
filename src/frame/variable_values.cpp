#include "frame/variable_values.hpp"

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

#include "driver/drv_item_dlg_var.hpp"
#include "platform/decimal_text.hpp"
#include "platform/library_memory.hpp"
#include "platform/text_trim.hpp"

namespace kerfline::frame {

using platform::library_alloc;
using platform::library_free;
using platform::library_strdup;

namespace {

template <typename T>
std::string decimal(T v) {
  char buf[64];
  const auto [end, ec] = std::to_chars(buf, buf + sizeof buf, v);
  return ec == std::errc() ? std::string(buf, end) : std::string("0");
}

}  // namespace

std::optional<double> leading_number(const std::string& text) {
  const auto number = platform::read_decimal(text);
  if (!number) return std::nullopt;
  return number->value;
}

std::int32_t item_integer(const driver::CDrvItem& item) {
  if (item.Type == driver::type_code::kDate) return static_cast<std::int32_t>(item.GetDate());
  const double v = leading_number(item.GetValue()).value_or(0.0);
  if (std::isnan(v)) return 0;
  if (v >= 2147483647.0) return std::numeric_limits<std::int32_t>::max();
  if (v <= -2147483648.0) return std::numeric_limits<std::int32_t>::min();
  return static_cast<std::int32_t>(v);
}

double item_double(const driver::CDrvItem& item) {
  if (item.Type == driver::type_code::kDate) return static_cast<double>(item.GetDate());
  return leading_number(item.GetValue()).value_or(0.0);
}

std::int32_t chosen_value_type(std::uint32_t item_type) {
  switch (item_type) {
    case driver::type_code::kDouble:
      return KERFLINE_VT_DOUBLE;
    case driver::type_code::kInteger:
      return KERFLINE_VT_INTEGER;
    case driver::type_code::kBool:
      return KERFLINE_VT_FLOAT;
    case driver::type_code::kDate:
      return KERFLINE_VT_DATE;
    default:
      return KERFLINE_VT_TEXT;
  }
}

std::int32_t read_value(const driver::CDrvItem& item, ValueSlot slot, bool trim_dialog_text) {
  if (slot.value_type == KERFLINE_VT_AUTO) slot.value_type = chosen_value_type(item.Type);
  switch (slot.value_type) {
    case KERFLINE_VT_INTEGER:
      slot.value.nInt = item_integer(item);
      return 1;
    case KERFLINE_VT_FLOAT:
      slot.value.fFloat = static_cast<float>(item_double(item));
      return 1;
    case KERFLINE_VT_DOUBLE:
      slot.value.dDouble = item_double(item);
      return 1;
    case KERFLINE_VT_TEXT: {
      std::string text = item.GetValue();
      if (trim_dialog_text && dynamic_cast<const driver::CDrvItemDlgVar*>(&item) != nullptr)
        text = std::string(platform::trim(text));
      char* copy = library_strdup(text);
      if (copy == nullptr) return KERFLINE_OUT_OF_MEMORY;
      slot.value.pszText = copy;
      return 1;
    }
    case KERFLINE_VT_DATE: {
      const std::uint32_t packed = item.GetDate();
      slot.value.anDate[0] = static_cast<std::int32_t>(packed & 0xFF);
      slot.value.anDate[1] = static_cast<std::int32_t>((packed >> 8) & 0xFF);
      slot.value.anDate[2] = static_cast<std::int32_t>(packed >> 16);
      return 1;
    }
    default:
      return slot.value_type == 0 ? 1 : 0;  // 6 to 9 and out of range
  }
}

std::optional<std::string> value_text(const driver::CDrvItem& item, ValueSlot slot) {
  if (slot.value_type == KERFLINE_VT_AUTO) slot.value_type = chosen_value_type(item.Type);
  switch (slot.value_type) {
    case KERFLINE_VT_INTEGER:
      return decimal(slot.value.nInt);
    case KERFLINE_VT_FLOAT:
      return decimal(slot.value.fFloat);
    case KERFLINE_VT_DOUBLE:
      return decimal(slot.value.dDouble);
    case KERFLINE_VT_TEXT:
      if (slot.value.pszText == nullptr) return std::nullopt;
      return std::string(slot.value.pszText);
    case KERFLINE_VT_DATE:
      return decimal(slot.value.anDate[0]) + "." + decimal(slot.value.anDate[1]) + "." +
             decimal(slot.value.anDate[2]);
    default:
      return std::nullopt;
  }
}

bool set_item_text(driver::CDrvItem& item, const std::string& text) {
  if (auto* dlg = dynamic_cast<driver::CDrvItemDlgVar*>(&item)) return dlg->SetCheckedValue(text);
  item.SetValue(text);
  return true;
}

}  // namespace kerfline::frame
