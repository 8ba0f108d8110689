#include "output.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "errors.h"

namespace undercut::host {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail_Write(const fs::path& path, const std::string& why) {
  throw RunError(path.string() + ": cannot be written (" + why +
                 "). Choose another folder with -o, or make room there.");
}

}  // namespace

OutputFolder::OutputFolder(const fs::path& folder, const std::vector<std::string>& names)
    : folder_(folder) {
  try {
    fs::path path;
    for (const fs::path& piece : folder) {
      path /= piece;
      std::error_code error;
      if (fs::create_directory(path, error)) made_.push_back(path);
      if (error && !fs::is_directory(path)) fail_Write(path, error.message());
    }
    files_.reserve(names.size());
    for (const std::string& name : names) {
      File file{name, folder / ("." + name + "." + std::to_string(getpid())), {}};
      open(file);
      file.stream.close();
      fs::remove(file.temporary);
      files_.push_back(std::move(file));
    }
  } catch (...) {
    clean_Up();
    throw;
  }
}

OutputFolder::~OutputFolder() {
  if (!committed_) clean_Up();
}

void OutputFolder::open(File& file) {
  file.stream.open(file.temporary, std::ios::binary | std::ios::trunc);
  if (!file.stream) fail_Write(folder_ / file.name, std::strerror(errno));
}

std::ofstream& OutputFolder::file(size_t i) {
  if (!files_[i].stream.is_open()) open(files_[i]);
  return files_[i].stream;
}

void OutputFolder::clean_Up() {
  std::error_code error;
  for (File& file : files_) {
    file.stream.close();
    fs::remove(file.temporary, error);
  }
  for (auto folder = made_.rbegin(); folder != made_.rend(); ++folder) fs::remove(*folder, error);
}

void OutputFolder::commit() {
  for (File& file : files_) {
    if (!file.stream.is_open()) open(file);
    file.stream.close();
    if (!file.stream) fail_Write(folder_ / file.name, "writing failed, perhaps the disk is full");
    if (fs::is_directory(folder_ / file.name)) {
      fail_Write(folder_ / file.name, "a folder of that name is in the way");
    }
  }
  for (const File& file : files_) {
    std::error_code error;
    fs::rename(file.temporary, folder_ / file.name, error);
    if (error) fail_Write(folder_ / file.name, error.message());
  }
  committed_ = true;
}

}  // namespace undercut::host
