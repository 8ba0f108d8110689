#include "library_request.h"

#include <string>

#include "errors.h"

namespace undercut::host {

void check_Status(int32_t status, const char* what) {
  if (status == 0) return;
  throw RunError("the library could not " + std::string(what) + " (status " +
                 std::to_string(status) + "). Check the part's coordinates, and the memory.");
}

}  // namespace undercut::host
