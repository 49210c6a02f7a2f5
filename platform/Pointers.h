#pragma once

#include <string>
#include <vector>

namespace platform {

/// Texts in the form that exec takes, ended by a null pointer; they stay the caller's.
inline std::vector<char*> pointersTo(const std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace platform
