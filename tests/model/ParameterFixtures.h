// Small builders for parameter dictionaries in the model tests.
#pragma once

#include <initializer_list>
#include <memory>
#include <string>

#include "model/ZelParameter.h"

namespace zel_test {

using zel::ZelParameter;
using zel::ZelPlist;

inline ZelPlist Str(const char* s) { return ZelPlist::string(s); }
inline ZelPlist Num(double v) { return ZelPlist::real(v); }
inline ZelPlist Yes() { return ZelPlist::boolean(true); }

inline ZelPlist Numbers(std::initializer_list<double> values) {
  ZelPlist::Array a;
  for (double v : values) a.push_back(ZelPlist::real(v));
  return ZelPlist::array(std::move(a));
}

inline ZelPlist Strings(std::initializer_list<const char*> values) {
  ZelPlist::Array a;
  for (const char* s : values) a.push_back(ZelPlist::string(s));
  return ZelPlist::array(std::move(a));
}

inline std::unique_ptr<ZelParameter> Param(ZelPlist::Dictionary keys) {
  return std::make_unique<ZelParameter>(ZelPlist::dictionary(std::move(keys)));
}

// The display text and suffix of a value.
inline std::pair<std::string, std::string> Text(const ZelParameter& p, float value) {
  std::string text, suffix;
  p.valueString(&text, &suffix, value);
  return {text, suffix};
}

}  // namespace zel_test
