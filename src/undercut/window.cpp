// Where a pair of angles lies against a window of directions.
#include <cmath>

#include "undercut/search.h"

namespace undercut {

char pos_Box(const T2DVEC& p, const double (&box)[4]) {
  // What is not a number lies in no window.
  const bool within = box[0] <= p.x && p.x <= box[2] && box[1] <= p.y && p.y <= box[3];
  if (!within) return '0';
  // Only the upper bounds are the rim: a scan begins on the lower ones and never reaches the upper
  // ones.
  return p.x == box[2] || p.y == box[3] ? 'r' : '1';
}

namespace {

double lies_Beyond(double value, double low, double high) {
  if (value < low) return low - value;
  return value > high ? value - high : 0.0;
}

}  // namespace

double dst_Box(const T2DVEC& p, const double (&box)[4]) {
  return len(T2DVEC{lies_Beyond(p.x, box[0], box[2]), lies_Beyond(p.y, box[1], box[3])});
}

}  // namespace undercut
