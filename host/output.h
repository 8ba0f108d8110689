// Where results go: files that appear whole or not at all.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace undercut::host {

// A folder that gets result files. It is made when the object is, and each file is tried, so that a
// path that can't be written is found before anything is computed. Files are written under
// temporary names, from their first use on, so that a run that is cut short while it computes
// leaves none. They get their names in commit(); without it they are removed, and so are the
// folders made, if empty.
class OutputFolder {
 public:
  // Throws RunError.
  OutputFolder(const std::filesystem::path& folder, const std::vector<std::string>& names);
  OutputFolder(const OutputFolder&) = delete;
  OutputFolder& operator=(const OutputFolder&) = delete;
  ~OutputFolder();

  // The file of names[i]. Throws RunError where it can't be opened.
  std::ofstream& file(size_t i);
  std::filesystem::path path(size_t i) const { return folder_ / files_[i].name; }

  // Ends the files and renames them. Throws RunError where one could not be written to its end;
  // then none is renamed.
  void commit();

 private:
  struct File {
    std::string name;
    std::filesystem::path temporary;
    std::ofstream stream;
  };

  void open(File& file);
  void clean_Up();

  std::filesystem::path folder_;
  std::vector<std::filesystem::path> made_;  // folders that were not there, outermost first
  std::vector<File> files_;
  bool committed_ = false;
};

}  // namespace undercut::host
