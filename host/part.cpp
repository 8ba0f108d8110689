#include "part.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <unordered_map>

#include "assimp_reader.h"
#include "errors.h"
#include "stl_reader.h"
#include "text.h"

namespace undercut::host {
namespace {

struct VertexHash {
  size_t operator()(const T3DVEC& v) const {
    uint64_t hash = 0;
    for (const double value : {v.x, v.y, v.z}) {
      hash = (hash ^ std::bit_cast<uint64_t>(value)) * 0x9E3779B97F4A7C15u;
      hash ^= hash >> 29;
    }
    return static_cast<size_t>(hash);
  }
};

struct VertexEqual {
  bool operator()(const T3DVEC& a, const T3DVEC& b) const {
    return a.x == b.x && a.y == b.y && a.z == b.z;
  }
};

std::ifstream open_File(const std::filesystem::path& path) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) {
    throw InputError(path.string() + ": this is a folder. Name a file.");
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw InputError(path.string() + ": cannot be opened (" + std::strerror(errno) +
                     "). Check the path and the permissions.");
  }
  return file;
}

}  // namespace

std::string read_File(const std::filesystem::path& path) {
  std::ifstream file = open_File(path);
  std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (file.bad()) throw InputError(path.string() + ": reading failed. Check the disk.");
  return bytes;
}

Mesh weld_Corners(const Soup& corners) {
  Mesh mesh;
  std::unordered_map<T3DVEC, uint32_t, VertexHash, VertexEqual> known;
  known.reserve(corners.size() / 4);
  std::vector<uint32_t> ids;
  ids.reserve(corners.size());
  for (const T3DVEC& corner : corners) {
    // Adding 0.0 turns -0.0 into 0.0, so that equal values have equal bits.
    const T3DVEC vertex{corner.x + 0.0, corner.y + 0.0, corner.z + 0.0};
    const auto [entry, fresh] = known.try_emplace(vertex, static_cast<uint32_t>(known.size()));
    if (fresh) mesh.vertices.push_back(vertex);
    ids.push_back(entry->second);
  }
  for (size_t i = 0; i + 2 < ids.size(); i += 3) {
    mesh.triangles.push_back({ids[i], ids[i + 1], ids[i + 2]});
  }
  return mesh;
}

Part read_Part(const std::filesystem::path& path) {
  const std::string extension = path.extension().string();
  const bool stl = extension.empty() || equal_Text(extension, ".stl");
  if (!stl) open_File(path);
  const Soup corners = stl ? parse_Stl(read_File(path), path.string()) : read_Assimp(path);
  if (corners.size() / 3 > kMostTriangles) {
    throw InputError(path.string() + ": too many triangles. Reduce the mesh to less than " +
                     std::to_string(kMostTriangles) + ".");
  }
  Part part{path.string(), weld_Corners(corners), 0, {}};
  part.welded = corners.size() - part.mesh.vertices.size();
  for (uint32_t i = 0; i < part.mesh.triangles.size(); ++i) {
    if (has_EqualCorners(part.mesh.triangles[i])) part.degenerate.push_back(i);
  }
  return part;
}

Roi whole_Roi(const Part& part) {
  Roi roi{"whole mesh", {}, 0};
  for (uint32_t i = 0; i < part.mesh.triangles.size(); ++i) {
    if (!has_EqualCorners(part.mesh.triangles[i])) roi.triangles.push_back(i);
  }
  if (roi.triangles.empty()) {
    throw InputError(part.path +
                     ": every triangle has two equal corners, so there is no surface."
                     " Check the scale that the part was exported with.");
  }
  return roi;
}

Roi read_Roi(const std::filesystem::path& path, size_t triangles) {
  const std::string bytes = read_File(path);
  Roi roi{path.string(), {}, 0};
  std::vector<bool> seen(triangles, false);
  size_t line = 0;
  for (std::string_view text : split_Text(skip_Mark(bytes), '\n')) {
    ++line;
    text = trim_Text(text.substr(0, text.find('#')));
    if (text.empty()) continue;
    const std::string where = path.string() + ":" + std::to_string(line) + ": ";
    if (!is_Whole(text)) {
      throw InputError(where + quote_Text(text) +
                       " is no triangle index. Write one whole number a line.");
    }
    const std::optional<int64_t> index = parse_Integer(text);
    if (!index || *index < 0 || static_cast<uint64_t>(*index) >= triangles) {
      throw InputError(where + "triangle " + std::string(text) +
                       " is out of range. The part has triangles 0 to " +
                       std::to_string(triangles - 1) + ".");
    }
    const auto triangle = static_cast<uint32_t>(*index);
    if (seen[triangle]) {
      ++roi.repeated;
      continue;
    }
    seen[triangle] = true;
    roi.triangles.push_back(triangle);
  }
  if (roi.triangles.empty()) {
    throw InputError(path.string() + ": the file names no triangle. Write one index a line.");
  }
  return roi;
}

std::vector<Roi> read_Rois(const std::vector<std::filesystem::path>& paths, const Part& part) {
  std::vector<Roi> rois;
  rois.reserve(paths.size());
  for (const auto& path : paths) rois.push_back(read_Roi(path, part.mesh.triangles.size()));
  return rois;
}

}  // namespace undercut::host
