#include <bit>
#include <cmath>
#include <ostream>
#include <string>

#include "report.h"

namespace undercut::host {
namespace {

// Little-endian on every machine.
void put_Bytes(std::string& bytes, uint64_t value, int count) {
  for (int k = 0; k < count; ++k) bytes += static_cast<char>((value >> (8 * k)) & 0xFF);
}

std::string make_Header(const Part& part) {
  return "ply\nformat binary_little_endian 1.0\n"
         "comment undercut regions; region: 0 free, -1 in no region of interest\n"
         "element vertex " +
         std::to_string(part.mesh.vertices.size()) +
         "\nproperty double x\nproperty double y\nproperty double z\n"
         "element face " +
         std::to_string(part.mesh.triangles.size()) +
         "\nproperty list uchar int vertex_indices\n"
         "property uchar red\nproperty uchar green\nproperty uchar blue\n"
         "property int region\nend_header\n";
}

}  // namespace

std::array<uint8_t, 3> pick_Colour(int32_t region) {
  if (region < 0) return {90, 90, 90};
  if (region == 0) return {200, 200, 200};
  // Hues a golden section of the circle apart; three steps of brightness tell near hues apart.
  const double hue = std::fmod(0.61803398874989484 * region, 1.0) * 6.0;
  const double value = 1.0 - 0.15 * (region % 3);
  std::array<uint8_t, 3> colour{};
  for (int k = 0; k < 3; ++k) {
    const double at = std::fmod(hue + (k == 0 ? 0.0 : k == 1 ? 4.0 : 2.0), 6.0);
    const double level = std::fmin(std::fmax(std::fabs(at - 3.0) - 1.0, 0.0), 1.0);
    colour[static_cast<size_t>(k)] =
        static_cast<uint8_t>(std::lround(255.0 * value * (0.25 + 0.75 * level)));
  }
  return colour;
}

void write_Ply(std::ostream& out, const Part& part, const Answer& answer) {
  std::string bytes = make_Header(part);
  for (const T3DVEC& v : part.mesh.vertices) {
    for (const double value : {v.x, v.y, v.z}) put_Bytes(bytes, std::bit_cast<uint64_t>(value), 8);
  }
  for (size_t i = 0; i < part.mesh.triangles.size(); ++i) {
    const T3DTRI& t = part.mesh.triangles[i];
    put_Bytes(bytes, 3, 1);
    for (const uint32_t corner : {t.a, t.b, t.c}) put_Bytes(bytes, corner, 4);
    for (const uint8_t channel : pick_Colour(answer.region_of[i])) put_Bytes(bytes, channel, 1);
    put_Bytes(bytes, static_cast<uint32_t>(answer.region_of[i]), 4);
  }
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace undercut::host
