// How hard random tests try: `--intensity=N` on the command line of a test program, 1 by default.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace undercut::tests {

// A number of random cases, times the intensity.
inline uint32_t scale_Cases(uint32_t cases) {
  static const uint32_t intensity = [] {
    const std::string key = "--intensity=";
    for (const std::string& arg : testing::internal::GetArgvs())
      if (arg.rfind(key, 0) == 0) return static_cast<uint32_t>(std::stoul(arg.substr(key.size())));
    return 1u;
  }();
  return cases * intensity;
}

}  // namespace undercut::tests
