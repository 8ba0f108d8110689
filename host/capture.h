// Holds back what is printed on standard output, by C functions too, and hands it over as text.
#pragma once

#include <cstdio>
#include <string>

namespace undercut::host {

class Capture {
 public:
  // From now on everything that is written to file descriptor 1 goes to a temporary file without a
  // name. Throws RunError where none can be made.
  Capture();
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;
  // Gives standard output back, also on the way of an exception.
  ~Capture();

  // Gives standard output back and returns what was printed.
  std::string finish();

 private:
  void restore() noexcept;

  std::FILE* file_ = nullptr;
  int saved_ = -1;
};

}  // namespace undercut::host
