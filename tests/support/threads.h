// The number of threads of OpenMP, for as long as an object lives.
#pragma once

#include <omp.h>

namespace undercut::tests {

class CThreads {
 public:
  explicit CThreads(int count) : before_(omp_get_max_threads()) { omp_set_num_threads(count); }
  ~CThreads() { omp_set_num_threads(before_); }
  CThreads(const CThreads&) = delete;
  CThreads& operator=(const CThreads&) = delete;

 private:
  int before_;
};

}  // namespace undercut::tests
