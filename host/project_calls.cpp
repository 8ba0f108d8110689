#include "project_calls.h"

#include "library_request.h"
#include "library_result.h"

namespace undercut::host {

std::vector<std::vector<T3DVEC>> move_Points(const Mesh& mesh,
                                             const std::vector<PointsArea>& areas) {
  std::vector<TLstU32> lists;
  std::vector<TArrVec> points;
  std::vector<T3DFRM> frames;
  for (const PointsArea& area : areas) {
    lists.push_back(view_List(area.triangles));
    points.push_back(view_Points(area.points));
    frames.push_back(area.frame);
  }
  const auto count = static_cast<uint32_t>(areas.size());
  TUcReq request = make_Request(mesh);
  request.prj_l = {lists.data(), count, count};
  request.prj_p = {points.data(), count};
  request.prj_f = {frames.data(), count, count};
  LibraryResult result;
  check_Status(get_Prj(&request, &result.record), "move the points");
  std::vector<std::vector<T3DVEC>> moved;
  for (uint32_t k = 0; k < count; ++k) {
    const TArrVec list = result.record.prj.data[k];
    moved.emplace_back(list.data, list.data + list.count);
  }
  return moved;
}

}  // namespace undercut::host
