// What the tests of the command share: small meshes, files in a folder of their own, and a way to
// run the built command.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "host/geometry.h"

namespace undercut::host {

namespace fs = std::filesystem;

// A folder that vanishes with the object.
struct Folder {
  fs::path path;
  Folder() {
    std::string form = (fs::temp_directory_path() / "undercut-test-XXXXXX").string();
    path = mkdtemp(form.data());
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code error;
    fs::remove_all(path, error);
  }

  fs::path write(const std::string& name, const std::string& bytes) const {
    std::ofstream(path / name, std::ios::binary) << bytes;
    return path / name;
  }
};

inline std::string load_File(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void put_U32(std::string& bytes, uint32_t value) {
  for (int k = 0; k < 4; ++k) bytes += static_cast<char>((value >> (8 * k)) & 0xFF);
}

inline std::string make_BinaryStl(const Soup& corners, const std::string& header = "a part") {
  std::string bytes = header;
  bytes.resize(80, ' ');
  put_U32(bytes, static_cast<uint32_t>(corners.size() / 3));
  for (size_t i = 0; i + 2 < corners.size(); i += 3) {
    bytes.append(12, '\0');
    for (size_t k = i; k < i + 3; ++k) {
      for (const double value : {corners[k].x, corners[k].y, corners[k].z}) {
        put_U32(bytes, std::bit_cast<uint32_t>(static_cast<float>(value)));
      }
    }
    bytes.append(2, '\0');
  }
  return bytes;
}

// A dome over a square grid of n by n cells, as a smooth open surface that faces up.
inline Soup make_Dome(int n) {
  const auto point = [n](int i, int j) {
    const double x = 10.0 * i / n, y = 10.0 * j / n;
    return T3DVEC{x, y, 4.0 - 0.06 * ((x - 4.7) * (x - 4.7) + (y - 5.2) * (y - 5.2))};
  };
  Soup corners;
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) {
      const T3DVEC a = point(i, j), b = point(i + 1, j), c = point(i + 1, j + 1),
                   d = point(i, j + 1);
      corners.insert(corners.end(), {a, b, c, a, c, d});
    }
  }
  return corners;
}

// The end of a line of the shell; what it prints is added to `printed`.
inline int run_Line(const std::string& line, std::string* printed = nullptr) {
  std::FILE* pipe = popen((line + " 2>&1").c_str(), "r");
  char buffer[4096];
  for (size_t n = 1; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
    if (printed != nullptr) printed->append(buffer, n);
  }
  const int status = pclose(pipe);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Checks documents NAME=PATH against docs/schemas/NAME.schema.json; with "--strict" in front also
// that the schemas let nothing else pass. Returns what is wrong, or nothing.
inline std::string check_Documents(const std::string& documents) {
  const bool strict = documents.starts_with("--strict ");
  const std::string tests = UNDERCUT_SOURCE "/tests/host/check_documents.py";
  std::string printed;
  const int status =
      run_Line("'" UNDERCUT_PYTHON "' '" + tests + (strict ? "' --strict " : "' ") +
                   "'" UNDERCUT_SOURCE "/docs/schemas' " + documents.substr(strict ? 9 : 0),
               &printed);
  if (status != 0 && printed.empty()) printed = "the check ended with " + std::to_string(status);
  return printed;
}

// All documents in a folder, and what the command printed there.
inline std::string find_Documents(const Folder& folder, const std::string& arguments) {
  std::string list;
  for (const auto& entry : fs::recursive_directory_iterator(folder.path)) {
    for (const char* name : {"axis", "undercut", "depth", "regions", "rim", "inside", "projection",
                             "statistics", "components"}) {
      if (entry.path().filename() != std::string(name) + ".json") continue;
      list += std::string(" ") + name + "='" + entry.path().string() + "'";
    }
  }
  if (arguments == "parameters --json") {
    list += " parameters='" + (folder.path / ".stdout").string() + "'";
  }
  return list;
}

struct Ran {
  int status = -1;
  std::string out, err;
};

// Runs the built command with arguments for the shell, in the folder. Every document that is there
// afterwards must be valid.
inline Ran run_Built(const Folder& folder, const std::string& arguments) {
  const std::string out = (folder.path / ".stdout").string();
  const std::string err = (folder.path / ".stderr").string();
  const std::string line = "cd '" + folder.path.string() +
                           "' && '" UNDERCUT_BUILD "/host/undercut' " + arguments + " >'" + out +
                           "' 2>'" + err + "'";
  const int status = std::system(line.c_str());
  const std::string documents = find_Documents(folder, arguments);
  if (!documents.empty()) {
    EXPECT_EQ(check_Documents(documents), "") << arguments;
  }
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, load_File(out), load_File(err)};
}

// What the call throws, as text; empty if nothing.
template <typename Error, typename Call>
std::string catch_Text(const Call& call) {
  try {
    call();
  } catch (const Error& error) {
    return error.what();
  }
  return "";
}

inline bool has_Text(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace undercut::host
