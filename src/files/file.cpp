#include "files/file.h"

#include <cstdarg>

namespace undercut {

File::File(const char* path, const char* mode)
    : stream_(path ? std::fopen(path, mode) : nullptr),
      locale_(newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr))) {}

File::~File() {
  close();
  if (locale_) freelocale(locale_);
}

void File::printf(const char* format, ...) {
  // Without a locale of its own (no memory) this asks for the current one and changes nothing.
  const locale_t before = uselocale(locale_);
  va_list args;
  va_start(args, format);
  std::vfprintf(stream_, format, args);
  va_end(args);
  uselocale(before);
}

bool File::close() {
  if (!stream_) return false;
  const bool written = std::ferror(stream_) == 0;
  const bool closed = std::fclose(stream_) == 0;
  stream_ = nullptr;
  return written && closed;
}

void File::write(const void* bytes, size_t size) { std::fwrite(bytes, 1, size, stream_); }

}  // namespace undercut
