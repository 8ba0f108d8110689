#include <charconv>
#include <cstdio>

#include "undercut/search.h"

namespace undercut {

namespace {

// The shortest digits that give the same value back, with a point whatever locale the host has set.
struct TDigits {
  char text[32] = {};
  explicit TDigits(double value) { std::to_chars(text, text + sizeof text - 1, value); }
};

}  // namespace

void print_Search(const char* name, uint32_t ratings, const TAmoRes& best) {
  std::printf("%s :: ratings %u, rating %s, theta %s, phi %s\n", name, ratings,
              TDigits(best.rating).text, TDigits(best.theta).text, TDigits(best.phi).text);
}

}  // namespace undercut
