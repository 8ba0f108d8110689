#include <cmath>
#include <iomanip>
#include <ostream>

#include "report.h"
#include "table_parts.h"
#include "text.h"

namespace undercut::host {
namespace {

// What the region of interest needed, in a phrase.
std::string show_Needed(const RoiAnswer& roi) {
  std::string text = count_Word(roi.notes.size(), "call", "calls");
  if (!roi.notes.empty() && roi.narrowest < roi.notes.front().aperture)
    text += ", aperture down to " + fixed_Text(roi.narrowest, 0) + " deg";
  if (roi.halvings > 0) text += ", halved " + count_Word(roi.halvings, "time", "times");
  if (roi.set_apart > 0)
    text += ", " + count_Word(roi.set_apart, "triangle", "triangles") + " set apart";
  return text;
}

void write_Line(std::ostream& out, const std::string& name, size_t count, double area, double whole,
                const std::string& more) {
  out << std::setw(8) << name << std::setw(12) << count << std::setw(14) << fixed_Text(area, 3)
      << std::setw(10) << show_Percent(area, whole) << more << "\n";
}

// A share in a column of its own; "-" of nothing.
std::string show_Column(double share) {
  const std::string text = std::isnan(share) ? "-" : show_Percent(share, 1.0);
  return std::string(text.size() < 10 ? 10 - text.size() : 0, ' ') + text;
}

void write_Roi(std::ostream& out, const RoiAnswer& roi, size_t index) {
  out << "\nRegion of interest " << index << " (" << roi.roi.source
      << "): " << (roi.failed() ? "failed in part" : "done") << "; " << show_Needed(roi) << "\n";
  if (roi.given_up > 0) {
    out << "  " << count_Word(roi.given_up, "triangle", "triangles")
        << " could not be computed and stayed free.\n";
  }
  if (roi.roi.repeated > 0) {
    out << "  " << count_Word(roi.roi.repeated, "repeated entry", "repeated entries")
        << " of the list left out.\n";
  }
  out << "  region   triangles      area mm2     share      seen  rim seen   axis, from the part "
         "towards the tool\n";
  for (const Region& region : roi.regions) {
    write_Line(out, std::to_string(region.number), region.triangles.size(), region.area, roi.area,
               show_Column(region.sight.share) + show_Column(region.sight.rim_share) + "  " +
                   show_Direction(region.axis));
  }
  write_Line(out, "free", roi.free.size(), roi.area - roi.covered, roi.area, "");
}

void write_Search(std::ostream& out, const Search& search) {
  out << "\nBest axis" << (search.from_face ? ", normal of flat faces" : "")
      << ", taken as the machine's Z: " << show_Direction(search.axis) << "\n"
      << "It and its opposite see " << show_Percent(search.area - search.undercut, search.area)
      << " of the surface.\n";
  if (search.triangles == 0) {
    out << "No undercut: there is nothing to divide.\n";
    return;
  }
  const std::string least = fixed_Text(search.min_area, 3) + " mm2";
  out << "Undercut: " << fixed_Text(search.undercut, 3) << " mm2, "
      << count_Word(search.triangles, "triangle", "triangles") << "; "
      << count_Word(search.patches.size(), "patch", "patches") << " of " << least << " and more.\n";
  if (search.dropped > 0) {
    out << count_Word(search.dropped, "smaller patch", "smaller patches")
        << " left out: " << fixed_Text(search.dropped_area, 3) << " mm2. --min-area 0 takes all.\n";
  }
  if (search.patches.empty()) out << "There is nothing to divide.\n";
}

// Breaks a sentence into lines of at most `width` characters.
void write_Wrapped(std::ostream& out, const std::string& sentence, size_t margin, size_t width) {
  size_t column = 0;
  for (const std::string_view word : split_Text(sentence, ' ')) {
    if (column == 0 || column + 1 + word.size() > width) {
      out << (column == 0 ? "" : "\n") << std::string(margin, ' ') << word;
      column = word.size();
    } else {
      out << ' ' << word;
      column += 1 + word.size();
    }
  }
  out << "\n";
}

}  // namespace

void write_Table(std::ostream& out, const Part& part, const DecomposeOptions& options,
                 const Answer& answer) {
  write_Part(out, part);
  write_Settings(out, options.settings);
  if (answer.search) write_Search(out, *answer.search);
  for (size_t i = 0; i < answer.rois.size(); ++i) write_Roi(out, answer.rois[i], i);
  out << "\n";
  if (!answer.rois.empty()) {
    out << count_Word(answer.regions, "region covers", "regions cover") << " "
        << show_Percent(answer.covered, answer.area) << " of " << fixed_Text(answer.area, 3)
        << " mm2, ";
    if (answer.search) {
      out << show_Percent(answer.covered, answer.search->undercut) << " of all undercut, ";
    }
  }
  out << "in " << fixed_Text(answer.elapsed_ms / 1000.0, 2) << " s\n";
  for (const StageTime& time : answer.times) {
    out << "  " << std::left << std::setw(50) << time.stage << std::right << std::setw(8) << time.ms
        << " ms\n";
  }
}

void write_Parameters(std::ostream& out) {
  out << "Parameters, set by --set KEY=VALUE. KEY is the name behind the point, the whole name, "
         "or\n"
         "the setter. The decomposition reads those of the block dcm, and ucs.f_tol.\n";
  std::string block;
  for (const Parameter& p : all_Parameters()) {
    if (p.block != block) out << "\n";
    block = p.block;
    const std::string unit = std::string_view(p.unit) == "-" ? "" : p.unit;
    out << std::left << std::setw(12) << p.name() << " " << std::setw(8) << p.setter << " default "
        << std::setw(8) << show_Value(p.standard) << " " << std::setw(8) << unit << std::right
        << " [" << p.range << "]\n";
    write_Wrapped(out, p.sentence, 6, 84);
  }
}

}  // namespace undercut::host
