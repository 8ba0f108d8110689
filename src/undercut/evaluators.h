// What the searches for an axis minimise: ratings of a direction, given by its polar angle theta
// from +Z and its azimuth phi, in degrees.
//
// Both ask of each triangle whether it sees out along the direction (mesh/sight.h), and both are
// measures of area: mm2 for three axes, a fraction without unit for five. Rays are cast in
// parallel; sums run over the triangles in list order, so a rating has the same bits for any number
// of threads. Ratings share their memory: a further one allocates only where it needs more.
//
// Life: construct, set the weights, ini_Err, any number of ratings, destruct. ini_Err may be
// repeated. What is read of the mesh is a view: it must stay alive and unchanged.
#pragma once

#include "foundation/bit_vector.h"
#include "undercut/rated_mesh.h"

namespace undercut {

class CXaxUcErr {
 public:
  // The rating; lower is better.
  virtual double Err(const double& theta, const double& phi) = 0;

 protected:
  ~CXaxUcErr() = default;
};

// Three axes: the part is seen from both ends of an axis.
class C3axUcErr final : public CXaxUcErr {
 public:
  // Weight of the true area against the area projected along the axis.
  void set_Gew(double gew) { gew_ = gew; }
  // False for an empty mesh, a vertex index out of range or no memory.
  bool ini_Err(const T3DMSH& mesh);
  void clr_Err();

  // Minus the area seen along the direction and against it, in mm2: each triangle counts with its
  // true area (weight 1) to its projected area (weight 0), and twice if it is seen both ways.
  double Err(const double& theta, const double& phi) override;

  // Sets the bits of the triangles that are seen along the direction or against it, and clears the
  // others. 0, or -5 for a bit vector of another size, which stays as it was.
  int32_t get_Vis(const double& theta, const double& phi, CBitVector& vis);

 private:
  void see_Both(const T3DVEC& direction);

  CRatedMsh mesh_;
  double gew_ = 1.0;
};

// Five axes: a region is seen from one side.
class C5axUcErr final : public CXaxUcErr {
 public:
  void set_Gew(double gew) { gew_ = gew; }  // weight of the tilt
  void set_Off(double off);                 // lift of the ray's start, in mm
  // The triangles to rate; a null list: all. The list stays the caller's, its indices in range.
  void set_Sel(const TLst<uint32_t>& sel) { sel_ = sel; }
  // theta and phi at the low end, then at the high end, in degrees.
  void set_Box(const double (&box)[4]);
  // Whether directions outside the box are refused; its bounds lie inside.
  void set_UseBox(bool use) { use_box_ = use; }

  // As C3axUcErr; also sums the areas, and forgets the selection.
  bool ini_Err(const T3DMSH& mesh);
  void clr_Err();

  // The blocked area of the rated triangles as a part of the area of the whole mesh, plus the
  // weight times the sine of the angle between the direction and the mean of the unit normals that
  // are seen (0 seen: the weight itself). kAbsent for a refused direction.
  double Err(const double& theta, const double& phi) override;

 private:
  struct TSums {
    T3DVEC normal = {};
    double blocked = 0.0;
  };
  // Adds what the listed triangles, or the first `count` of the mesh, give: at most as many as it
  // has.
  void add_Block(const T3DVEC& direction, const uint32_t* list, uint32_t count, TSums& sums);

  CRatedMsh mesh_;
  double sum_ = 0.0;  // of all areas
  double gew_ = 0.0;
  double off_ = 0.0;
  TLst<uint32_t> sel_ = {};
  double box_[4] = {0.0, 0.0, 180.0, 360.0};
  bool use_box_ = false;
};

}  // namespace undercut
