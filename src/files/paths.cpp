#include "files/paths.h"

#include <sys/stat.h>

#include <cstdio>

namespace undercut {

namespace {

std::string_view file_Part(const char* path) {
  if (!path) return {};
  const std::string_view whole = path;
  return whole.substr(pth_Dir(path).size());
}

}  // namespace

bool fmt_Text(char* buffer, size_t size, const char* format, va_list args) {
  const int length = std::vsnprintf(buffer, size, format, args);
  const bool fits = length >= 0 && static_cast<size_t>(length) < size;
  if (!fits) buffer[0] = '\0';
  return fits;
}

std::string_view pth_Dir(const char* path) {
  if (!path) return {};
  const std::string_view whole = path;
  const size_t slash = whole.rfind('/');
  return slash == std::string_view::npos ? std::string_view{} : whole.substr(0, slash + 1);
}

std::string_view pth_Nam(const char* path) {
  const std::string_view file = file_Part(path);
  return file.substr(0, file.size() - pth_Ext(path).size());
}

std::string_view pth_Ext(const char* path) {
  const std::string_view file = file_Part(path);
  const size_t point = file.rfind('.');
  return point == std::string_view::npos ? std::string_view{} : file.substr(point);
}

void pth_Mkd(const char* path) {
  const std::string_view folders = pth_Dir(path);
  if (folders.empty()) return;

  // A piece is appended with one '/' before it, so the text never outgrows "." and the folders.
  char text[kNameSize];
  if (folders.size() + 1 >= kNameSize) return;
  size_t length = 0;
  if (folders[0] != '/') text[length++] = '.';

  for (size_t first = 0; first < folders.size();) {
    size_t last = folders.find('/', first);
    const std::string_view piece = folders.substr(first, last - first);
    first = last + 1;
    if (piece.empty() || piece == ".") continue;
    text[length++] = '/';
    length += piece.copy(text + length, piece.size());
    text[length] = '\0';
    mkdir(text, 0777);  // less what the process's mask takes away
  }
}

}  // namespace undercut
