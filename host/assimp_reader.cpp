#include "assimp_reader.h"

#include <string>

#include "errors.h"

#ifdef UNDERCUT_ASSIMP

#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <assimp/Importer.hpp>

namespace undercut::host {
namespace {

void add_Face(const aiMesh& mesh, const aiFace& face, const aiMatrix4x4& place, Soup& corners) {
  if (face.mNumIndices != 3) return;
  for (unsigned k = 0; k < 3; ++k) {
    const aiVector3D p = place * mesh.mVertices[face.mIndices[k]];
    corners.push_back(
        {static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z)});
  }
}

void add_Node(const aiScene& scene, const aiNode& node, const aiMatrix4x4& above, Soup& corners) {
  const aiMatrix4x4 place = above * node.mTransformation;
  for (unsigned m = 0; m < node.mNumMeshes; ++m) {
    const aiMesh& mesh = *scene.mMeshes[node.mMeshes[m]];
    for (unsigned f = 0; f < mesh.mNumFaces; ++f) add_Face(mesh, mesh.mFaces[f], place, corners);
  }
  for (unsigned c = 0; c < node.mNumChildren; ++c) {
    add_Node(scene, *node.mChildren[c], place, corners);
  }
}

}  // namespace

bool has_Assimp() { return true; }

Soup read_Assimp(const std::filesystem::path& path) {
  Assimp::Importer importer;
  const aiScene* scene = importer.ReadFile(path.string(), aiProcess_Triangulate);
  if (scene == nullptr || scene->mRootNode == nullptr) {
    throw InputError(path.string() + ": this file cannot be read as a mesh (" +
                     importer.GetErrorString() + "). Export the part as STL.");
  }
  Soup corners;
  add_Node(*scene, *scene->mRootNode, aiMatrix4x4(), corners);
  if (corners.empty()) {
    throw InputError(path.string() + ": the file holds no triangle. Check what was exported.");
  }
  for (size_t i = 0; i < corners.size(); ++i) {
    if (is_Finite(corners[i])) continue;
    throw InputError(path.string() + ": triangle " + std::to_string(i / 3) +
                     " has a coordinate that is not finite. Repair the part and export it again.");
  }
  return corners;
}

}  // namespace undercut::host

#else

namespace undercut::host {

bool has_Assimp() { return false; }

Soup read_Assimp(const std::filesystem::path& path) {
  throw InputError(path.string() +
                   ": this build reads STL only (the name must end in .stl). Export the part as"
                   " STL, or install libassimp-dev and build again from an empty build folder.");
}

}  // namespace undercut::host

#endif
