/* A host in C11: the header compiles, its records have the layout that is promised, calls work. */
#include "header_c.h"

#include <stddef.h>
#include <undercut/exports.h>

#define STANDS_AT(record, field, byte) \
  _Static_assert(offsetof(record, field) == (byte), #record " " #field)

_Static_assert(sizeof(T3DMSH) == 24, "T3DMSH");
STANDS_AT(T3DMSH, n_vtx, 8);
STANDS_AT(T3DMSH, tri, 12);
STANDS_AT(T3DMSH, n_tri, 20);
_Static_assert(sizeof(T3DPOL) == 24, "T3DPOL");
STANDS_AT(T3DPOL, sgm, 12);
_Static_assert(sizeof(TArrU32) == 12, "TArr");
_Static_assert(sizeof(TLstU32) == 16, "TLst");
STANDS_AT(TLstU32, count, 8);
STANDS_AT(TLstU32, capacity, 12);
_Static_assert(sizeof(T3DRAY) == 48, "T3DRAY");
_Static_assert(sizeof(T3DFRM) == 96, "T3DFRM");

_Static_assert(sizeof(TUcReq) == 652, "TUcReq");
STANDS_AT(TUcReq, msh_b, 24);
STANDS_AT(TUcReq, arg, 36);
STANDS_AT(TUcReq, roi, 48);
STANDS_AT(TUcReq, bit, 64);
STANDS_AT(TUcReq, cav, 76);
STANDS_AT(TUcReq, axi, 96);
STANDS_AT(TUcReq, lst, 108);
STANDS_AT(TUcReq, add, 120);
STANDS_AT(TUcReq, f_a, 128);
STANDS_AT(TUcReq, f_b, 136);
STANDS_AT(TUcReq, ray, 144);
STANDS_AT(TUcReq, msh_c, 192);
STANDS_AT(TUcReq, frm, 216);
STANDS_AT(TUcReq, n_cnt, 312);
STANDS_AT(TUcReq, p_a, 320);
STANDS_AT(TUcReq, p_b, 328);
STANDS_AT(TUcReq, rois, 336);
STANDS_AT(TUcReq, dir, 352);
STANDS_AT(TUcReq, prj_l, 608);
STANDS_AT(TUcReq, prj_p, 624);
STANDS_AT(TUcReq, prj_f, 636);

_Static_assert(sizeof(TUcRes) == 368, "TUcRes");
STANDS_AT(TUcRes, frm_b, 96);
STANDS_AT(TUcRes, lst, 192);
STANDS_AT(TUcRes, n_lst, 200);
STANDS_AT(TUcRes, dfi, 208);
STANDS_AT(TUcRes, ucs, 216);
STANDS_AT(TUcRes, rma, 240);
STANDS_AT(TUcRes, com, 252);
STANDS_AT(TUcRes, sta, 272);
STANDS_AT(TUcRes, uca_t, 280);
STANDS_AT(TUcRes, uca_a, 296);
STANDS_AT(TUcRes, uca_f, 312);
STANDS_AT(TUcRes, prj, 328);
STANDS_AT(TUcRes, nml, 340);
STANDS_AT(TUcRes, sts, 356);

_Static_assert(sizeof(TUcSts) == 12, "TUcSts");
STANDS_AT(TUcSts, first, 4);
STANDS_AT(TUcSts, second, 8);
_Static_assert(sizeof(TUcStat) == 48, "TUcStat");
STANDS_AT(TUcStat, share, 8);
STANDS_AT(TUcStat, area_seen, 16);
STANDS_AT(TUcStat, area, 24);
STANDS_AT(TUcStat, value, 32);
STANDS_AT(TUcStat, rim_seen, 40);
STANDS_AT(TUcStat, rim, 44);

TCAnswer call_FromC(void) {
  T3DVEC vtx[4] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  T3DTRI tri[2] = {{0, 1, 2}, {0, 2, 3}};
  uint32_t all[2] = {0, 1}, last[1] = {1};
  TLstU32 regions[2] = {{all, 2, 2}, {last, 1, 1}};
  const double add[2] = {4.0, 3.0};
  const T3DMSH msh = {vtx, 4, tri, 2};
  const TLstLstU32 cav = {regions, 2, 2};
  TCAnswer answer;
  TUcReq req;
  TUcRes res;
  answer.status[0] = ini_Req(&req);
  answer.status[1] = ini_Res(&res);
  req.msh = msh;
  req.cav = cav;
  req.add = add;
  answer.status[2] = get_Stc(&req, &res);
  for (int k = 0; k < 2; ++k) {
    answer.area[k] = res.sta[k].area;
    answer.value[k] = res.sta[k].value;
  }
  answer.status[3] = clr_Res(&res);
  answer.status[4] = ini_Adt(&msh);
  answer.status[5] = clr_Dll();
  return answer;
}

int set_FromC(void) {
  const int32_t passes = -1;
  const uint32_t bands = 2;
  const uint8_t off = 0;
  const double width = 3.8;
  const double box[4] = {0.0, 0.0, 180.0, 360.0};
  return dcm_max(&passes) + dcm_Con(&bands) + dcm_log(&off) + ucs_Pgr(&off) + con_Wid(&width) +
         dcm_srt("len") + nxn_Box(box);
}
