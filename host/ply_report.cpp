#include "report.h"

namespace undercut::host {

void write_Ply(std::ostream& out, const Part& part, const Answer& answer) {
  const auto put_Region = [&](size_t i, std::string& bytes) {
    put_Bytes(bytes, static_cast<uint32_t>(answer.region_of[i]), 4);
  };
  write_FacePly(out, part.mesh,
                {"undercut regions; region: 0 free, -1 in no region of interest", "int region",
                 [&](size_t i) { return pick_Colour(answer.region_of[i]); }, put_Region});
}

void write_Rims(std::ostream& out, const Answer& answer) {
  for (const RoiAnswer& roi : answer.rois) {
    for (const Region& region : roi.regions) {
      for (const RimCurve& curve : region.rim.curves) {
        write_Curve(out, "lnd(" + pad_Number(region.number) + ")", curve.placed);
      }
    }
  }
}

}  // namespace undercut::host
