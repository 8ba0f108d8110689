// Binary PLY of a mesh whose triangles have a colour and one value each.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>

#include "geometry.h"

namespace undercut::host {

using Colour = std::array<uint8_t, 3>;

// The lowest bytes of a value, the least first, on every machine.
void put_Bytes(std::string& bytes, uint64_t value, int count);

struct FaceLook {
  const char* comment;
  const char* property;  // kind and name of the value: "int region"
  std::function<Colour(size_t)> colour;
  std::function<void(size_t, std::string&)> put_Value;  // appends its bytes
};

// Little-endian; vertices in double precision, triangles in the order of the mesh.
void write_FacePly(std::ostream& out, const Mesh& mesh, const FaceLook& look);

// Colours that lie far apart for numbers from 1 that lie near; light grey for 0, dark below.
Colour pick_Colour(int32_t number);

}  // namespace undercut::host
