// Names of files and folders: built in fixed buffers, taken apart, and made on disk.
//
// Only '/' separates the pieces of a path. There are no drives: "D:" is a folder's name like any
// other, and so is a name with backslashes in it.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <string_view>

namespace undercut {

inline constexpr size_t kNameSize = 1024;   // bytes of a file name or a label, its end included
inline constexpr size_t kFolderSize = 256;  // bytes of a folder's text, its end included

// False, with an empty text, if the formatted text and its end do not fit.
bool fmt_Text(char* buffer, size_t size, const char* format, va_list args);

// The same for an array. A name that does not fit must not be used: an empty name opens no file.
template <size_t N>
__attribute__((format(printf, 2, 3))) bool fmt_Name(char (&buffer)[N], const char* format, ...) {
  va_list args;
  va_start(args, format);
  const bool fits = fmt_Text(buffer, N, format, args);
  va_end(args);
  return fits;
}

// The parts of a path, as views into it: the folder with its closing '/', the base name, and the
// extension from the last '.' of the name on. A null path has empty parts.
std::string_view pth_Dir(const char* path);
std::string_view pth_Nam(const char* path);
std::string_view pth_Ext(const char* path);

// Makes every folder of a path that does not exist yet, from the root for a path that begins with
// '/', else from the current folder. What follows the last '/' is not made, so a folder is passed
// with a closing '/'. A null path does nothing, and one that does not fit kNameSize neither; a
// folder that cannot be made is passed over in silence.
void pth_Mkd(const char* path);

}  // namespace undercut
