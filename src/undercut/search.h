// Searches over directions, given by theta and phi in degrees (evaluators.h).
#pragma once

#include "interface/parameters.h"
#include "undercut/evaluators.h"

namespace undercut {

struct TAmoRes {
  double theta, phi, rating;
};

// Rates a near-uniform covering of the window and returns the best; of equal ratings the first. All
// three values are kAbsent where nothing rates below that. Neither end of the window is visited. A
// loop ends after its first angle where its step is not above 0, not finite, lost in rounding, or
// so small that 2^32 of them or more would fill the range.
TAmoRes scan_Nxn(CXaxUcErr& err, const TNxnPar& par);

// The three vertices of a simplex round a start, at a radius in degrees.
void ini_Simplex(TAmoPar& par, const T2DVEC& start, double radius);

// Downhill simplex (J. A. Nelder, R. Mead, A Simplex Method for Function Minimization, 1965) from
// the three vertices of the block, which are overwritten, and so is the count of iterations.
// Angles are neither wrapped nor clipped.
TAmoRes run_Amo(CXaxUcErr& err, TAmoPar& par);

// The angles of a signed tilt in the plane of an azimuth. Angles beyond a turn stay as they are.
void fold_Tilt(double tilt, double phi, double& theta, double& phi_out);
// The rating of a signed tilt.
double rate_Tilt(CXaxUcErr& err, double tilt, double phi);

struct TGldRes {
  double tilt, rating;
};

// Golden section over the tilt, in the bracket of the block (f_th0_s to f_th1_s), which it narrows.
// Writes the count of iterations to n_itr.
TGldRes run_Gld(CXaxUcErr& err, TGcuPar& par, uint32_t& n_itr);

// '0' outside the box (theta and phi at the low end, then at the high end), 'r' on an upper bound,
// '1' inside, lower bounds included.
char pos_Box(const T2DVEC& p, const double (&box)[4]);

// The distance from a point to a box; 0 inside.
double dst_Box(const T2DVEC& p, const double (&box)[4]);

// Counts the ratings that a search asks for.
class CCountedErr final : public CXaxUcErr {
 public:
  explicit CCountedErr(CXaxUcErr& err) : err_(err) {}
  double Err(const double& theta, const double& phi) override {
    ++count_;
    return err_.Err(theta, phi);
  }
  uint32_t count() const { return count_; }

 private:
  CXaxUcErr& err_;
  uint32_t count_ = 0;
};

// Prints what a search found as one line on standard output, with all digits and in the C locale:
// "<name> :: ratings <n>, rating <r>, theta <degrees>, phi <degrees>".
void print_Search(const char* name, uint32_t ratings, const TAmoRes& best);

}  // namespace undercut
