#include "output.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "errors.h"

namespace undercut::host {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail_Write(const fs::path& path, const std::string& why) {
  throw RunError(path.string() + ": cannot be written (" + why +
                 "). Choose another folder with -o, or make room there.");
}

// PREFIX, a number without leading zeros, ENDING.
bool is_Numbered(std::string_view name, const std::string& prefix, const std::string& ending) {
  if (!name.starts_with(prefix) || !name.ends_with(ending)) return false;
  if (name.size() <= prefix.size() + ending.size()) return false;
  name.remove_prefix(prefix.size());
  name.remove_suffix(ending.size());
  return name[0] != '0' &&
         std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
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
      File file{name, name_Temporary(name), {}};
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

fs::path OutputFolder::name_Temporary(const std::string& name) const {
  return folder_ / ("." + name + "." + std::to_string(getpid()));
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

void OutputFolder::finish(File& file) {
  if (file.done) return;
  if (!file.stream.is_open()) open(file);
  file.stream.close();
  if (!file.stream) fail_Write(folder_ / file.name, "writing failed, perhaps the disk is full");
  file.done = true;
}

void OutputFolder::add(const std::string& name, const std::string& bytes) {
  files_.push_back({name, name_Temporary(name), {}});
  file(files_.size() - 1) << bytes;
  // Many such files must not stand open together.
  finish(files_.back());
}

void OutputFolder::replace_Numbered(const std::string& prefix, const std::string& ending) {
  numbered_.emplace_back(prefix, ending);
}

void OutputFolder::remove_Old() {
  for (const auto& entry : fs::directory_iterator(folder_)) {
    const std::string name = entry.path().filename().string();
    const bool ours = std::any_of(numbered_.begin(), numbered_.end(), [&](const auto& form) {
      return is_Numbered(name, form.first, form.second);
    });
    const bool written = std::any_of(files_.begin(), files_.end(),
                                     [&](const File& file) { return file.name == name; });
    std::error_code error;
    if (ours && !written && fs::is_regular_file(entry.path(), error)) {
      fs::remove(entry.path(), error);
    }
  }
}

void OutputFolder::commit() {
  for (File& file : files_) {
    finish(file);
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
  if (!numbered_.empty()) remove_Old();
}

}  // namespace undercut::host
