// The numbers that bound the errors of a sweep; sweep.cpp shows why they do.
#pragma once

#include <limits>

namespace undercut {

// Stands where nothing is bounded.
inline constexpr float kInfinite = std::numeric_limits<float>::infinity();

// A triangle is thin where twice its area in the plane is below kThin times its length and a number
// `least`, which is kThinLeast, or kThinFar times the square of how far from 0 the mesh lies.
inline constexpr float kThin = 0x1p-20f;
inline constexpr double kThinLeast = 0x1p-30, kThinFar = 0x1p-42;
// What its area must be at least, in bounds for edges, for all else to be clear.
inline constexpr float kSure = 4.0f;
// What `least` adds to the bound for edges of both signs.
inline constexpr float kClear = 0x1p-6f;
// Its tiles are those under its rectangle, widened by this part of its widest edge and by kPad.
inline constexpr float kWiden = 0.125f, kPad = 0x1p-19f;
// A ray within that, or within the shadow of the own box of a thin one, is no farther from its
// corners than this many widest edges, or lengths, and twice kPad.
inline constexpr float kReachBeyond = 1.25f;
// Of the sides of edges: what rounding adds, and what hit_Tri itself errs by.
inline constexpr float kEdge = 0x1p-21f, kLongEdge = 0x1p-24f, kLeast = 0x1p-43f;
// Of the side of a triangle, likewise.
inline constexpr float kSide = 0x1p-22f, kReach = 0x1p-20f, kLongSide = 0x1p-42f;
// Of a component of a normal; and how that adds to the side of a thin triangle.
inline constexpr float kNormal = 0x1.1p-23f, kTilts = 1.1875f;
// A triangle's own box reaches no farther from its corners than this many of its lengths.
inline constexpr float kDeep = 2.25f;

}  // namespace undercut
