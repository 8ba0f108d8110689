// Where results go: files that appear whole or not at all.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
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
  size_t count() const { return files_.size(); }

  // A further file, of which the name is known late: its bytes go to a temporary name at once.
  // Throws RunError.
  void add(const std::string& name, const std::string& bytes);

  // Of the files PREFIX1ENDING, PREFIX2ENDING and so on commit() removes those that an earlier run
  // left and this one does not write.
  void replace_Numbered(const std::string& prefix, const std::string& ending);

  // Ends the files and renames them. Throws RunError where one could not be written to its end;
  // then none is renamed.
  void commit();

 private:
  struct File {
    std::string name;
    std::filesystem::path temporary;
    std::ofstream stream;
    bool done = false;  // written to its end
  };

  std::filesystem::path name_Temporary(const std::string& name) const;
  void open(File& file);
  void finish(File& file);
  void remove_Old();
  void clean_Up();

  std::filesystem::path folder_;
  std::vector<std::filesystem::path> made_;  // folders that were not there, outermost first
  std::vector<File> files_;
  std::vector<std::pair<std::string, std::string>> numbered_;  // prefix and ending
  bool committed_ = false;
};

}  // namespace undercut::host
