// Builds descriptions for the model tests from XML property-list text.
#pragma once

#include <string>

#include "model/ZelConfig.h"

namespace zel_test {

// `body` is the inside of the top-level <dict>.
inline std::string descriptionXML(const std::string& body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n" + body +
         "\n</dict>\n</plist>\n";
}

inline zel::ZelConfigLoad loadDescription(const std::string& body) {
  const std::string text = descriptionXML(body);
  return zel::ZelConfig::loadData(text.data(), text.size());
}

// One clump entry: `metadata` and `parameters` are the insides of the
// clump's metadata <dict> and of its parameters <array>.
inline std::string clump(const std::string& metadata, const std::string& parameters = "") {
  return "<dict><key>metadata</key><dict>" + metadata + "</dict><key>parameters</key><array>" + parameters +
         "</array></dict>";
}

inline std::string clumps(const std::string& entries) { return "<key>clumps</key><array>" + entries + "</array>"; }

inline std::string parameter(int pid, const std::string& codesafeName, const std::string& more = "") {
  return "<dict><key>pid</key><integer>" + std::to_string(pid) + "</integer><key>codesafeName</key><string>" +
         codesafeName + "</string>" + more + "</dict>";
}

inline std::string key(const std::string& k, const std::string& value) { return "<key>" + k + "</key>" + value; }
inline std::string str(const std::string& s) { return "<string>" + s + "</string>"; }
inline std::string num(double v) { return "<real>" + std::to_string(v) + "</real>"; }
inline std::string integer(long long v) { return "<integer>" + std::to_string(v) + "</integer>"; }

}  // namespace zel_test
