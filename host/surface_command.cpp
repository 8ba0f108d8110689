#include "surface_command.h"

#include <ostream>

namespace undercut::host {

double since_Ms(std::chrono::steady_clock::time_point start) {
  const std::chrono::duration<double, std::milli> elapsed =
      std::chrono::steady_clock::now() - start;
  return elapsed.count();
}

void hand_Over(OutputFolder& folder, const Json& document, bool print_document, std::ostream& out,
               const std::function<void()>& write_Table, const std::string& more) {
  const std::string json = print_Json(document);
  folder.file(1) << json;
  folder.commit();
  if (print_document) {
    out << json;
    return;
  }
  write_Table();
  out << "\nWritten: " << folder.path(0).string() << ", " << folder.path(1).string() << more
      << "\n";
}

}  // namespace undercut::host
