#include "undercut/patch_rims.h"

#include <algorithm>
#include <new>
#include <utility>

#include "foundation/parallel.h"
#include "mesh/boundary.h"

namespace undercut {

namespace {

// body(first, end) for triangles in a row, on one thread: each search begins where the last one
// ended.
template <typename Body>
void each_Run(uint32_t count, const Body& body) {
  constexpr uint32_t kRun = 32, kFewRuns = 256;
  each_Block(count, kRun, body, kFewRuns);
}

}  // namespace

void CPatchRims::clear() {
  rims_.reset();
  release(*patches_.waiting);
  release(*patches_.order);
  release(*patches_.starts);
  release(*ends_);
  release(*edges_);
}

bool CPatchRims::find(const CBitVector& hidden) {
  clear();
  if (!find_Components(tri_tri_, hidden, patches_)) return false;
  for (uint32_t j = 0; j < count(); ++j)
    for (uint32_t i = patches_.first(j); i < patches_.end(j); ++i)
      number_->data[patches_.order->data[i]] = j;
  return true;
}

bool CPatchRims::make_Rims() {
  if (count() == 0) return true;
  rims_.reset(new (std::nothrow) CRim[count()]);
  return rims_ != nullptr;
}

// All hidden neighbours of a hidden triangle belong to its patch. Edges come by triangle, then
// corner: what a rim keeps of them hangs on that.
bool CPatchRims::list_Borders(const CBitVector& hidden) {
  if (!alloc(*ends_, count())) return false;
  const auto is_Hidden = [&](uint32_t t) { return hidden.test(t); };
  each_Index(msh_.n_tri, [&](uint32_t t) {
    open_->data[t] = is_Hidden(t) ? find_Open(msh_, tri_tri_, t, is_Hidden) : uint8_t{0};
  });
  uint64_t total = 0;
  for (uint32_t t = 0; t < msh_.n_tri; ++t) {
    if (open_->data[t] == 0) continue;
    const uint32_t edges = count_Open(open_->data[t]);
    ends_->data[number_->data[t]] += edges;
    total += edges;
  }
  if (total > UINT32_MAX || !alloc(*edges_, static_cast<uint32_t>(total))) return false;
  // Each end begins as the first place of its patch and moves up as the edges come.
  uint32_t place = 0;
  for (uint32_t j = 0; j < count(); ++j) place += std::exchange(ends_->data[j], place);
  for (uint32_t t = 0; t < msh_.n_tri; ++t) {
    if (open_->data[t] == 0) continue;
    uint32_t& end = ends_->data[number_->data[t]];
    for (uint32_t k = 0; k < 3; ++k)
      if (open_->data[t] & 1u << k)
        edges_->data[end++] = {corner(msh_.tri[t], k), corner(msh_.tri[t], k + 1)};
  }
  return true;
}

int32_t CPatchRims::build_Rim(uint32_t j, const CBitVector& open_ends, const T3DFRM& frm) {
  const uint32_t first = j == 0 ? 0 : ends_->data[j - 1];
  if (first == ends_->data[j]) return 0;
  TArr<T3DSGM> border = {edges_->data + first, ends_->data[j] - first};
  drop_Open(border, open_ends);
  return rims_[j].Build(msh_, border, frm);
}

void CPatchRims::measure(const T3DFRM& frm, double* least) {
  const TArr<uint32_t>& order = *patches_.order;
  each_Run(order.count, [&](uint64_t first, uint64_t end) {
    uint32_t near = 0, before = kNone;
    for (uint64_t i = first; i < end; ++i) {
      const uint32_t t = order.data[i], patch = number_->data[t];
      if (rims_[patch].is_Empty()) continue;
      if (patch != before) near = 0;
      before = patch;
      least[t] = std::min(least[t], rims_[patch].measure(get_Place(msh_, frm, t), near));
    }
  });
}

void measure_Set(const T3DMSH& msh, const T3DFRM& frm, const CRim& rim, const CBitVector& set,
                 double* distance) {
  each_Run(msh.n_tri, [&](uint64_t first, uint64_t end) {
    uint32_t near = 0;
    for (auto t = static_cast<uint32_t>(first); t < end; ++t)
      if (set.test(t)) distance[t] = rim.measure(get_Place(msh, frm, t), near);
  });
}

int32_t CPatchRims::measure_ByFlood(const TFlood& flood, double* least) {
  for (uint32_t j = 0; j < count(); ++j) {
    if (rims_[j].is_Empty()) continue;
    if (!rims_[j].build_Tree()) return -1;
    uint32_t* const list = patches_.order->data + patches_.first(j);
    std::reverse(list, list + size(j));
    for (uint32_t i = 0; i < size(j); ++i) flood.waiting.set(list[i]);
    if (const int32_t code = flood_Depth(flood, rims_[j], {list, size(j), size(j)}))
      return code - 1;
    for (uint32_t i = 0; i < size(j); ++i)
      least[list[i]] = std::min(least[list[i]], flood.rho[list[i]]);
  }
  return 0;
}

}  // namespace undercut
