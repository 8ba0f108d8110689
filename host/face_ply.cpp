#include "face_ply.h"

#include <bit>
#include <cmath>
#include <ostream>

namespace undercut::host {

void put_Bytes(std::string& bytes, uint64_t value, int count) {
  for (int k = 0; k < count; ++k) bytes += static_cast<char>((value >> (8 * k)) & 0xFF);
}

void write_FacePly(std::ostream& out, const Mesh& mesh, const FaceLook& look) {
  std::string bytes = std::string("ply\nformat binary_little_endian 1.0\ncomment ") + look.comment +
                      "\nelement vertex " + std::to_string(mesh.vertices.size()) +
                      "\nproperty double x\nproperty double y\nproperty double z\nelement face " +
                      std::to_string(mesh.triangles.size()) +
                      "\nproperty list uchar int vertex_indices\nproperty uchar red\n"
                      "property uchar green\nproperty uchar blue\nproperty " +
                      look.property + "\nend_header\n";
  for (const T3DVEC& v : mesh.vertices) {
    for (const double value : {v.x, v.y, v.z}) put_Bytes(bytes, std::bit_cast<uint64_t>(value), 8);
  }
  for (size_t i = 0; i < mesh.triangles.size(); ++i) {
    const T3DTRI& t = mesh.triangles[i];
    put_Bytes(bytes, 3, 1);
    for (const uint32_t corner : {t.a, t.b, t.c}) put_Bytes(bytes, corner, 4);
    for (const uint8_t channel : look.colour(i)) put_Bytes(bytes, channel, 1);
    look.put_Value(i, bytes);
  }
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

Colour pick_Colour(int32_t number) {
  if (number < 0) return {90, 90, 90};
  if (number == 0) return {200, 200, 200};
  // Hues a golden section of the circle apart; three steps of brightness tell near hues apart.
  const double hue = std::fmod(0.61803398874989484 * number, 1.0) * 6.0;
  const double value = 1.0 - 0.15 * (number % 3);
  Colour colour{};
  for (int k = 0; k < 3; ++k) {
    const double at = std::fmod(hue + (k == 0 ? 0.0 : k == 1 ? 4.0 : 2.0), 6.0);
    const double level = std::fmin(std::fmax(std::fabs(at - 3.0) - 1.0, 0.0), 1.0);
    colour[static_cast<size_t>(k)] =
        static_cast<uint8_t>(std::lround(255.0 * value * (0.25 + 0.75 * level)));
  }
  return colour;
}

}  // namespace undercut::host
