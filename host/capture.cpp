#include "capture.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iostream>

#include "errors.h"

namespace undercut::host {

Capture::Capture() {
  std::cout.flush();
  std::fflush(stdout);
  file_ = std::tmpfile();
  saved_ = dup(STDOUT_FILENO);
  if (file_ == nullptr || saved_ < 0 || dup2(fileno(file_), STDOUT_FILENO) < 0) {
    const std::string why = std::strerror(errno);
    if (saved_ >= 0) close(saved_);
    if (file_ != nullptr) std::fclose(file_);
    throw RunError("no temporary file could be made (" + why + "). Make room in the folder /tmp.");
  }
}

Capture::~Capture() {
  restore();
  std::fclose(file_);
}

void Capture::restore() noexcept {
  if (saved_ < 0) return;
  std::fflush(stdout);
  dup2(saved_, STDOUT_FILENO);
  close(saved_);
  saved_ = -1;
}

std::string Capture::finish() {
  restore();
  std::string text;
  std::rewind(file_);
  char buffer[4096];
  for (size_t n = 1; (n = std::fread(buffer, 1, sizeof buffer, file_)) > 0;) text.append(buffer, n);
  return text;
}

}  // namespace undercut::host
