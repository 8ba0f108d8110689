// The records of the boundary: their layout, checked field by field, and their life.
#include <cstddef>
#include <cstring>

#include "foundation/arrays.h"
#include "interface/exports.h"

namespace {

// What the host's compiler lays out must be what ours does.
#define HAS_SIZE(record, bytes) static_assert(sizeof(record) == (bytes), #record)
#define STANDS_AT(record, field, byte) static_assert(offsetof(record, field) == (byte), #field)

HAS_SIZE(void*, 8);
HAS_SIZE(T2DVEC, 16);
HAS_SIZE(T3DVEC, 24);
HAS_SIZE(T3DTRI, 12);
HAS_SIZE(T3DSGM, 8);
HAS_SIZE(T3DRAY, 48);
HAS_SIZE(T3DFRM, 96);
HAS_SIZE(TArrU32, 12);
HAS_SIZE(TLstU32, 16);
STANDS_AT(TLstU32, count, 8);
STANDS_AT(TLstU32, capacity, 12);

HAS_SIZE(T3DMSH, 24);
STANDS_AT(T3DMSH, vtx, 0);
STANDS_AT(T3DMSH, n_vtx, 8);
STANDS_AT(T3DMSH, tri, 12);
STANDS_AT(T3DMSH, n_tri, 20);
HAS_SIZE(T3DPOL, 24);
STANDS_AT(T3DPOL, pnt, 0);
STANDS_AT(T3DPOL, n_pnt, 8);
STANDS_AT(T3DPOL, sgm, 12);
STANDS_AT(T3DPOL, n_sgm, 20);

HAS_SIZE(TUcReq, 652);
STANDS_AT(TUcReq, msh, 0);
STANDS_AT(TUcReq, msh_b, 24);
STANDS_AT(TUcReq, arg, 36);
STANDS_AT(TUcReq, roi, 48);
STANDS_AT(TUcReq, bit, 64);
STANDS_AT(TUcReq, cav, 76);
STANDS_AT(TUcReq, gap_92, 92);
STANDS_AT(TUcReq, axi, 96);
STANDS_AT(TUcReq, lst, 108);
STANDS_AT(TUcReq, add, 120);
STANDS_AT(TUcReq, f_a, 128);
STANDS_AT(TUcReq, f_b, 136);
STANDS_AT(TUcReq, ray, 144);
STANDS_AT(TUcReq, msh_c, 192);
STANDS_AT(TUcReq, frm, 216);
STANDS_AT(TUcReq, n_cnt, 312);
STANDS_AT(TUcReq, gap_316, 316);
STANDS_AT(TUcReq, p_a, 320);
STANDS_AT(TUcReq, p_b, 328);
STANDS_AT(TUcReq, rois, 336);
STANDS_AT(TUcReq, dir, 352);
STANDS_AT(TUcReq, prj_l, 608);
STANDS_AT(TUcReq, prj_p, 624);
STANDS_AT(TUcReq, prj_f, 636);

HAS_SIZE(TUcSts, 12);
STANDS_AT(TUcSts, roi, 0);
STANDS_AT(TUcSts, first, 4);
STANDS_AT(TUcSts, second, 8);

HAS_SIZE(TUcStat, 48);
STANDS_AT(TUcStat, seen, 0);
STANDS_AT(TUcStat, gap_1, 1);
STANDS_AT(TUcStat, share, 8);
STANDS_AT(TUcStat, area_seen, 16);
STANDS_AT(TUcStat, area, 24);
STANDS_AT(TUcStat, value, 32);
STANDS_AT(TUcStat, rim_seen, 40);
STANDS_AT(TUcStat, rim, 44);

HAS_SIZE(TUcRes, 368);
STANDS_AT(TUcRes, frm_a, 0);
STANDS_AT(TUcRes, frm_b, 96);
STANDS_AT(TUcRes, lst, 192);
STANDS_AT(TUcRes, n_lst, 200);
STANDS_AT(TUcRes, gap_204, 204);
STANDS_AT(TUcRes, dfi, 208);
STANDS_AT(TUcRes, ucs, 216);
STANDS_AT(TUcRes, gap_224, 224);
STANDS_AT(TUcRes, rma, 240);
STANDS_AT(TUcRes, com, 252);
STANDS_AT(TUcRes, gap_268, 268);
STANDS_AT(TUcRes, sta, 272);
STANDS_AT(TUcRes, uca_t, 280);
STANDS_AT(TUcRes, uca_a, 296);
STANDS_AT(TUcRes, uca_f, 312);
STANDS_AT(TUcRes, prj, 328);
STANDS_AT(TUcRes, nml, 340);
STANDS_AT(TUcRes, sts, 356);

}  // namespace

// The gaps, p_a and p_b keep what the host's memory held.
int32_t ini_Req(TUcReq* req) {
  if (!req) return 0;
  req->msh = {};
  req->msh_b = {};
  req->arg = {};
  req->roi = {};
  req->bit = {};
  req->cav = {};
  req->axi = {};
  req->lst = {};
  req->add = nullptr;
  req->f_a = 0.0;
  req->f_b = 0.0;
  // A host may keep its record at a multiple of 4 only; whole vectors are stored byte by byte.
  std::memset(reinterpret_cast<char*>(req) + offsetof(TUcReq, ray), 0, sizeof(T3DRAY));
  req->msh_c = {};
  std::memcpy(reinterpret_cast<char*>(req) + offsetof(TUcReq, frm), &undercut::kIdentity,
              sizeof(T3DFRM));
  req->n_cnt = 0;
  req->rois = {};
  std::memset(req->dir, 0, sizeof req->dir);
  req->prj_l = {};
  req->prj_p = {};
  req->prj_f = {};
  return 0;
}

// The first 192 bytes, the two single frames, keep what the host's memory held.
int32_t ini_Res(TUcRes* res) {
  constexpr size_t first = offsetof(TUcRes, lst);
  if (res) std::memset(reinterpret_cast<char*>(res) + first, 0, sizeof(TUcRes) - first);
  return 0;
}

int32_t clr_Res(TUcRes* res) {
  using namespace undercut;
  if (!res) return 0;
  free_Array(res->ucs);
  res->ucs = nullptr;
  free_Array(res->dfi);
  res->dfi = nullptr;
  free_Array(res->sta);
  res->sta = nullptr;
  free_Array(res->lst);
  res->lst = nullptr;
  res->n_lst = 0;
  release(res->rma);
  release(res->com);
  release(res->uca_t);
  release(res->uca_a);
  release(res->uca_f);
  release(res->prj);
  release(res->nml);
  release(res->sts);
  return 0;
}

int32_t clr_Sub(TLstU32* lst) {
  if (lst) undercut::release(*lst);
  return 0;
}
