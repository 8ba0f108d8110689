// Whole calls of all computations in random order, with random parameters, requests in and out of
// order, and allocations that fail: nothing crashes, leaks or hangs, what the host owns stays as it
// was, and every status is one that docs/statuses.md lists for its export.
#include <gtest/gtest.h>
#include <undercut/exports.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

#include "tests/boundary/defaults.h"
#include "tests/boundary/statuses_table.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"
#include "tests/support/random_parameters.h"
#include "tests/support/random_request.h"

using namespace undercut::tests;

namespace {

using Statuses = std::map<std::string, std::set<int32_t>>;

// ---- The computations --------------------------------------------------------------------------

struct TComputation {
  const char* name;
  int32_t (*call)(const TUcReq*, TUcRes*);
};

// The two that take other arguments, from what a request holds.
int32_t call_Prj(const TUcReq* req, TUcRes* res) {
  T3DRAY ray = {};
  T3DVEC point = {};
  if (req) std::memcpy(&ray, &req->ray, sizeof ray);
  return det_Prj(req ? &ray : nullptr, res ? &point : nullptr);
}
int32_t call_Roi(const TUcReq* req, TUcRes*) { return det_Roi(req); }

const TComputation kComputations[] = {
    {"det_Prj", call_Prj}, {"det_Roi", call_Roi}, {"get_Prj", get_Prj}, {"get_Dcm", get_Dcm},
    {"get_3ax", get_3ax},  {"get_Amo", get_Amo},  {"get_4ay", get_4ay}, {"get_5ax", get_5ax},
    {"get_5ay", get_5ay},  {"get_UCs", get_UCs},  {"get_UCd", get_UCd}, {"get_UCc", get_UCc},
    {"get_dFi", get_dFi},  {"get_dFb", get_dFb},  {"get_Rma", get_Rma}, {"get_Rmb", get_Rmb},
    {"get_Rmc", get_Rmc},  {"get_Sta", get_Sta},  {"get_Stb", get_Stb}, {"get_Stc", get_Stc},
    {"get_Sub", get_Sub},  {"get_Com", get_Com},  {"flt_Com", flt_Com}, {"err_Nml", err_Nml},
};

Statuses load_Statuses() {
  Statuses statuses;
  for (const TStatusSection& section : read_Statuses(load_Source("docs/statuses.md")))
    for (const TStatusRow& row : section.rows) statuses[section.name].insert(row.status);
  return statuses;
}

// ---- Reading a result whole --------------------------------------------------------------------

// Looks at every byte of an array, so that a sanitizer sees one that is too short.
class Reader {
 public:
  void read(const void* data, uint64_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (uint64_t i = 0; bytes && i < size; ++i) sum_ = sum_ + bytes[i];
  }
  template <typename T>
  void read(const T* data, uint64_t count) {
    read(static_cast<const void*>(data), count * sizeof(T));
  }
  template <typename T>
  void read_List(const T& list) {
    read(list.data, list.count);
  }
  template <typename T>
  void read_Lists(const T& lists) {
    read_List(lists);
    for (uint32_t k = 0; k < lists.count; ++k) read_List(lists.data[k]);
  }
  // Lists of triangles of a mesh.
  void read_Triangles(const TLstU32& list, uint32_t triangles) {
    EXPECT_LE(list.count, list.capacity);
    for (uint32_t i = 0; i < list.count; ++i) ASSERT_LT(list.data[i], triangles);
  }
  void read_Pieces(const TLstLstU32& lists, uint32_t triangles) {
    for (uint32_t k = 0; k < lists.count; ++k) read_Triangles(lists.data[k], triangles);
  }

 private:
  volatile unsigned char sum_ = 0;
};

uint32_t count_Registered() {
  uint32_t count = 0;
  cnt_Tri(&count);
  return count;
}

void read_Decomposition(Reader& reader, const TUcReq& req, const TUcRes& res) {
  EXPECT_EQ(res.sts.count, req.rois.count);
  reader.read_List(res.sts);
  EXPECT_EQ(res.uca_t.count, res.uca_a.count);
  EXPECT_EQ(res.uca_t.count, res.uca_f.count);
  for (uint32_t k = 0; k < res.uca_t.count; ++k) {
    EXPECT_EQ(res.uca_t.data[k].count, res.uca_a.data[k].count);
    EXPECT_EQ(res.uca_t.data[k].count, res.uca_f.data[k].count);
    reader.read_Pieces(res.uca_t.data[k], req.msh.n_tri);
  }
  reader.read_Lists(res.uca_a);
  reader.read_Lists(res.uca_f);
}

// A result that was empty before a computation succeeded.
void read_Result(const TUcReq& req, const TUcRes& res) {
  Reader reader;
  reader.read(&res.frm_a, 2);
  if (res.lst) {
    EXPECT_EQ(res.n_lst, req.cav.capacity);
  }
  reader.read(res.lst, res.n_lst);
  reader.read(res.dfi, req.msh.n_tri);
  reader.read_Lists(res.rma);
  reader.read_Pieces(res.com, req.msh.n_tri);
  reader.read(res.sta, req.cav.capacity);
  reader.read_Lists(res.prj);
  reader.read_Lists(res.nml);
}

void read_Marks(const char* name, const TUcReq& req, const TUcRes& res) {
  const bool registered = std::strcmp(name, "get_UCd") == 0;
  const uint32_t count = registered ? count_Registered() : req.msh.n_tri;
  for (uint32_t t = 0; res.ucs && t < count; ++t) EXPECT_LE(res.ucs[t], 1);
}

// ---- One sequence ------------------------------------------------------------------------------

class Sequence {
 public:
  Sequence(uint64_t seed, const Statuses& listed, std::map<std::string, uint32_t>& succeeded)
      : random_(seed), listed_(listed), succeeded_(succeeded) {
    ini_Res(&held_);
  }
  ~Sequence() {
    clr_Res(&held_);
    clr_Dll();
  }
  Sequence(const Sequence&) = delete;
  Sequence& operator=(const Sequence&) = delete;

  void run() {
    set_Coarse(random_);
    register_Mesh();
    for (uint64_t calls = 5 + random_.below(7); calls-- > 0 && !testing::Test::HasFailure();) {
      while (random_.chance(0.6)) set_Parameter(random_);
      if (random_.chance(0.15)) register_Mesh();
      if (random_.chance(0.15)) look_AtRegistered();
      if (!request_ || random_.chance(0.6)) renew_Request();
      call_One(kComputations[random_.below(std::size(kComputations))]);
    }
  }

 private:
  void renew_Request() {
    request_ = std::make_unique<CRandomRequest>(random_, random_.chance(0.4));
  }

  void register_Mesh() {
    clr_Dll();
    if (random_.chance(0.05)) return;
    CRandomRequest request(random_, random_.chance(0.2));
    const uint64_t sum = request.checksum(true);
    const int32_t status = ini_Adt(random_.chance(0.98) ? &request.req.msh : nullptr);
    EXPECT_EQ(listed_.at("ini_Adt").count(status), 1u) << "ini_Adt gave " << status;
    EXPECT_EQ(request.checksum(true), sum);
    // What a failed call has built goes before anything else.
    if (status != 0) clr_Dll();
  }

  void look_AtRegistered() {
    Reader reader;
    const uint32_t count = count_Registered();
    TLstU32 selected = {}, shaded = {};
    EXPECT_EQ(get_Roi(&selected), 0);
    EXPECT_EQ(selected.capacity, count);
    reader.read_Triangles(selected, count);
    EXPECT_EQ(get_Shd(&shaded), 0);
    EXPECT_EQ(shaded.count, 0u);
    EXPECT_EQ(clr_Sub(&shaded), 0);
    EXPECT_TRUE(shaded.data == nullptr);
  }

  // Pieces of an earlier call stand in for the regions. Only flt_Com takes and replaces them in one
  // result; every other computation would overwrite what is still to be freed.
  void call_One(const TComputation& computation) {
    SCOPED_TRACE(computation.name);
    TUcReq req;
    std::memcpy(static_cast<void*>(&req), &request_->req, sizeof req);
    const bool hands_Back = held_.com.data && random_.chance(0.3);
    if (hands_Back) req.cav = held_.com;
    // A grid by the size of its cells has as many as the mesh is large.
    const uint8_t by_Number = 0;
    if (!request_->is_Tame()) gri_Res(&by_Number);

    if (hands_Back && computation.call == flt_Com) {
      call_Checked(computation, req, held_);
    } else {
      TUcRes res;
      std::memset(static_cast<void*>(&res), 0, sizeof res);
      const int32_t status = call_Checked(computation, req, res);
      if (status == 0) read_Answer(computation, req, res);
      keep_Or_Clear(res);
    }
  }

  void read_Answer(const TComputation& computation, const TUcReq& req, const TUcRes& res) {
    if (computation.call == get_UCc) {
      TLstU32 selected;
      std::memcpy(&selected, &res.frm_a, sizeof selected);
      Reader().read_Triangles(selected, count_Registered());
      return;
    }
    read_Result(req, res);
    read_Marks(computation.name, req, res);
    if (computation.call == get_Dcm) {
      Reader reader;
      read_Decomposition(reader, req, res);
    }
  }

  void keep_Or_Clear(TUcRes& res) {
    if (res.com.data && random_.chance(0.7)) {
      clr_Res(&held_);
      held_.com = res.com;
      res.com = {};
    }
    clr_Res(&res);
    if (random_.chance(0.1)) clr_Res(&res);
  }

  int32_t call_Checked(const TComputation& computation, const TUcReq& req, TUcRes& res) {
    const bool changes_Rois = computation.call == get_Dcm;
    const uint64_t sum = request_->checksum(!changes_Rois);
    TUcReq req_Before;
    TUcRes res_Before;
    std::memcpy(static_cast<void*>(&req_Before), &req, sizeof req);
    std::memcpy(static_cast<void*>(&res_Before), &res, sizeof res);
    const TUcReq* in = random_.chance(0.99) ? &req : nullptr;
    TUcRes* out = random_.chance(0.99) ? &res : nullptr;
    const uint64_t failing = random_.chance(0.05) ? 1 + random_.below(40) : 0;

    const auto start = std::chrono::steady_clock::now();
    int32_t status = 0;
    if (failing) {
      const FailingAllocation fails(failing);
      status = computation.call(in, out);
    } else {
      status = computation.call(in, out);
    }
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    EXPECT_LT(time.count(), 60.0);

    EXPECT_EQ(listed_.at(computation.name).count(status), 1u)
        << computation.name << " gave " << status << ", failing allocation " << failing;
    EXPECT_EQ(request_->checksum(!changes_Rois), sum);
    EXPECT_EQ(std::memcmp(&req, &req_Before, sizeof req), 0);
    if (status != 0 && !changes_Rois) {
      EXPECT_EQ(std::memcmp(&res, &res_Before, sizeof res), 0) << status;
    }
    if (status == 0) ++succeeded_[computation.name];
    return status;
  }

  reference::Random random_;
  const Statuses& listed_;
  std::map<std::string, uint32_t>& succeeded_;
  std::unique_ptr<CRandomRequest> request_;
  TUcRes held_;  // of which com alone is used: pieces that are kept from call to call
};

class CallSequences : public testing::Test {
 protected:
  CallSequences() { defaults::restore(); }
  ~CallSequences() override { defaults::restore(); }
};

TEST_F(CallSequences, HaveAStatusTableForEachComputation) {
  const Statuses listed = load_Statuses();
  for (const TComputation& computation : kComputations) {
    const auto found = listed.find(computation.name);
    ASSERT_TRUE(found != listed.end()) << computation.name;
    EXPECT_EQ(found->second.count(0), 1u) << computation.name;
    EXPECT_GT(found->second.size(), 5u) << computation.name;
  }
  EXPECT_EQ(std::size(kComputations), 24u);
}

TEST_F(CallSequences, NeverCrashLeakHangOrGiveAStatusThatIsNotListed) {
  const uint64_t first_Seed = 4711000;
  const Statuses listed = load_Statuses();
  for (const TComputation& computation : kComputations)
    ASSERT_EQ(listed.count(computation.name), 1u) << computation.name;
  std::map<std::string, uint32_t> succeeded;
  for (const TComputation& computation : kComputations) succeeded[computation.name] = 0;
  const uint32_t sequences = scale_Cases(1000);
  for (uint32_t i = 0; i < sequences && !HasFailure(); ++i) {
    const uint64_t seed = first_Seed + i;
    SCOPED_TRACE("seed " + std::to_string(seed));
    defaults::restore();
    const int64_t live = live_Allocations();
    Sequence(seed, listed, succeeded).run();
    EXPECT_EQ(live_Allocations(), live);
  }
  // A test of refusals alone would say little.
  for (const auto& [name, count] : succeeded) EXPECT_GE(count, sequences / 100) << name;
}

}  // namespace
