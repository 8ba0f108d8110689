// A binary STL file as a mesh: corners at one place become one vertex.
#pragma once

#include <cstring>
#include <fstream>
#include <map>
#include <string>

#include "foundation/values.h"
#include "tests/mesh/soups.h"

namespace undercut::tests {

// Empty where the file can't be read.
inline TSoup read_Stl(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  char head[84] = {};
  file.read(head, sizeof head);
  uint32_t count = 0;
  std::memcpy(&count, head + 80, sizeof count);
  TSoup soup;
  std::map<T3DVECF, uint32_t> places;
  char record[50];
  for (uint32_t t = 0; t < count && file.read(record, sizeof record); ++t) {
    float xyz[9];
    std::memcpy(xyz, record + 12, sizeof xyz);
    uint32_t corners[3];
    for (int k = 0; k < 3; ++k) {
      const T3DVECF place = {xyz[3 * k], xyz[3 * k + 1], xyz[3 * k + 2]};
      const auto next = static_cast<uint32_t>(soup.vtx.size());
      const auto found = places.try_emplace(place, next);
      if (found.second) soup.vtx.push_back({place.x, place.y, place.z});
      corners[k] = found.first->second;
    }
    soup.tri.push_back({corners[0], corners[1], corners[2]});
  }
  return soup;
}

}  // namespace undercut::tests
