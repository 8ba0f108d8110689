#include "command.h"

#include <exception>
#include <new>
#include <ostream>

#include <nlohmann/json.hpp>

#include "axis_answer.h"
#include "classify_answer.h"
#include "components_answer.h"
#include "decompose.h"
#include "depth_answer.h"
#include "errors.h"
#include "inside_answer.h"
#include "options.h"
#include "project_answer.h"
#include "report.h"
#include "rim_answer.h"
#include "statistics_answer.h"

namespace undercut::host {
namespace {

int run_Parameters(bool json, std::ostream& out) {
  if (json) {
    out << print_Json(make_ParametersJson());
  } else {
    write_Parameters(out);
  }
  return kDone;
}

int run_Action(const Options& options, std::ostream& out, std::ostream& err) {
  switch (options.action) {
    case Options::Action::Axis:
      return run_Axis(options.axis, out, err);
    case Options::Action::Classify:
      return run_Classify(options.shadow, out, err);
    case Options::Action::Depth:
      return run_Depth(options.shadow, out, err);
    case Options::Action::Decompose:
      return run_Decompose(options.decompose, out, err);
    case Options::Action::Rim:
      return run_Rim(options.rim, out, err);
    case Options::Action::Inside:
      return run_Inside(options.inside, out, err);
    case Options::Action::Project:
      return run_Project(options.project, out, err);
    case Options::Action::Statistics:
      return run_Statistics(options.statistics, out, err);
    case Options::Action::Components:
      return run_Components(options.components, out, err);
    case Options::Action::Parameters:
      return run_Parameters(options.json, out);
    default:
      return kDone;
  }
}

}  // namespace

int run_Command(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  const auto fail = [&err](const char* what, int status) {
    err << "undercut: " << what << "\n";
    return status;
  };
  try {
    const int status = run_Action(parse_Options(argc, argv, out), out, err);
    out.flush();
    return out ? status : fail("standard output could not be written.", kFailures);
  } catch (const UsageError& error) {
    return fail(error.what(), kUsage);
  } catch (const InputError& error) {
    return fail(error.what(), kInput);
  } catch (const std::bad_alloc&) {
    return fail("not enough memory for this part. Reduce the mesh.", kFailures);
  } catch (const std::exception& error) {
    return fail(error.what(), kFailures);
  }
}

}  // namespace undercut::host
