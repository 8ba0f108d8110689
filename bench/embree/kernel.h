// Embree (I. Wald, S. Woop, C. Benthin, G. S. Johnson, M. Ernst, 2014), asked in each of its forms
// whether rays are blocked: one at a time, in packets of 8 and 16, and as a stream, of whose forms
// pointers to arrays were the fastest.
//
// Single precision: a start and a triangle closer than a few millionths of the body are told apart
// by chance. Its manual's advice is followed: the context says whether rays are coherent, and what
// lies in memory as the kernel takes it is not copied.
#pragma once

#include <embree3/rtcore.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/embree/rays.h"

namespace versus {

inline constexpr float kEndless = std::numeric_limits<float>::infinity();

class CKernelDevice {
 public:
  CKernelDevice(int threads, const std::string& settings)
      : device_(rtcNewDevice(("threads=" + std::to_string(threads) + settings).c_str())) {
    if (!device_) throw std::runtime_error("the kernel gives no device");
  }
  ~CKernelDevice() { rtcReleaseDevice(device_); }
  CKernelDevice(const CKernelDevice&) = delete;
  CKernelDevice& operator=(const CKernelDevice&) = delete;

  RTCDevice get() const { return device_; }

 private:
  RTCDevice device_;
};

// The mesh as the kernel borrows it: vertices in single precision, the last one with room for a
// read of 16 bytes.
struct TKernelMesh {
  T3DMSH msh;
  std::vector<float> points;

  explicit TKernelMesh(const T3DMSH& of) : msh(of) {
    for (uint32_t v = 0; v < msh.n_vtx; ++v)
      for (const double x : {msh.vtx[v].x, msh.vtx[v].y, msh.vtx[v].z})
        points.push_back(static_cast<float>(x));
    points.push_back(0.0f);
  }
};

// How a scene is built. Robust means slower tests that let no ray through between neighbours; the
// kernel then splits no triangles, so a high quality would build the same scene as a medium one.
struct TSceneKind {
  const char* name;
  RTCBuildQuality quality;
  bool robust = false;
};
inline constexpr TSceneKind kSceneKinds[] = {{"low", RTC_BUILD_QUALITY_LOW},
                                             {"medium", RTC_BUILD_QUALITY_MEDIUM},
                                             {"high", RTC_BUILD_QUALITY_HIGH},
                                             {"robust", RTC_BUILD_QUALITY_MEDIUM, true}};

class CKernelScene {
 public:
  CKernelScene(const CKernelDevice& device, const TKernelMesh& mesh, const TSceneKind& kind)
      : scene_(rtcNewScene(device.get())) {
    rtcSetSceneBuildQuality(scene_, kind.quality);
    rtcSetSceneFlags(scene_, kind.robust ? RTC_SCENE_FLAG_ROBUST : RTC_SCENE_FLAG_NONE);
    const RTCGeometry geometry = rtcNewGeometry(device.get(), RTC_GEOMETRY_TYPE_TRIANGLE);
    rtcSetGeometryBuildQuality(geometry, kind.quality);
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3,
                               mesh.points.data(), 0, 3 * sizeof(float), mesh.msh.n_vtx);
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, mesh.msh.tri,
                               0, sizeof(T3DTRI), mesh.msh.n_tri);
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(scene_, geometry);
    rtcReleaseGeometry(geometry);
    rtcCommitScene(scene_);
    if (rtcGetDeviceError(device.get()) != RTC_ERROR_NONE)
      throw std::runtime_error("the kernel fails to build a scene");
  }
  ~CKernelScene() { rtcReleaseScene(scene_); }
  CKernelScene(const CKernelScene&) = delete;
  CKernelScene& operator=(const CKernelScene&) = delete;

  RTCScene get() const { return scene_; }

 private:
  RTCScene scene_;
};

inline RTCIntersectContext make_Context(const TRays& rays) {
  RTCIntersectContext context;
  rtcInitIntersectContext(&context);
  context.flags = rays.one_direction ? RTC_INTERSECT_CONTEXT_FLAG_COHERENT
                                     : RTC_INTERSECT_CONTEXT_FLAG_INCOHERENT;
  return context;
}

inline RTCRay make_Ray(const TRays& rays, size_t i) {
  RTCRay ray = {};
  ray.org_x = rays.org[0][i], ray.org_y = rays.org[1][i], ray.org_z = rays.org[2][i];
  ray.dir_x = rays.dir[0][i], ray.dir_y = rays.dir[1][i], ray.dir_z = rays.dir[2][i];
  ray.tfar = kEndless;
  ray.mask = ~0u;
  return ray;
}

// The kernel marks a blocked ray by an end before its start.
inline uint8_t is_Open(float tfar) { return tfar >= 0.0f; }

inline void ask_Single(RTCScene scene, const TRays& rays, uint8_t* open) {
  each_Block(rays.count(), [&](size_t first, size_t end) {
    RTCIntersectContext context = make_Context(rays);
    for (size_t i = first; i < end; ++i) {
      RTCRay ray = make_Ray(rays, i);
      rtcOccluded1(scene, &context, &ray);
      open[i] = is_Open(ray.tfar);
    }
  });
}

// Packet is RTCRay8 or RTCRay16, with the function of its width.
template <typename Packet>
void ask_Packets(RTCScene scene, const TRays& rays, uint8_t* open,
                 void (*occluded)(const int*, RTCScene, RTCIntersectContext*, Packet*)) {
  constexpr size_t kWidth = sizeof(Packet::org_x) / sizeof(float);
  each_Block(rays.count(), [&](size_t first, size_t end) {
    RTCIntersectContext context = make_Context(rays);
    Packet packet = {};
    alignas(64) int valid[kWidth];
    std::fill_n(packet.mask, kWidth, ~0u);
    for (size_t i = first; i < end; i += kWidth) {
      const size_t lanes = std::min(kWidth, end - i);
      for (size_t k = 0; k < kWidth; ++k) valid[k] = k < lanes ? -1 : 0;
      const auto load = [&](float* to, const std::vector<float>& from) {
        std::memcpy(to, from.data() + i, lanes * sizeof(float));
      };
      load(packet.org_x, rays.org[0]), load(packet.org_y, rays.org[1]);
      load(packet.org_z, rays.org[2]), load(packet.dir_x, rays.dir[0]);
      load(packet.dir_y, rays.dir[1]), load(packet.dir_z, rays.dir[2]);
      std::fill_n(packet.tfar, kWidth, kEndless);
      occluded(valid, scene, &context, &packet);
      for (size_t k = 0; k < lanes; ++k) open[i + k] = is_Open(packet.tfar[k]);
    }
  });
}

inline void ask_Packets8(RTCScene scene, const TRays& rays, uint8_t* open) {
  ask_Packets<RTCRay8>(scene, rays, open, rtcOccluded8);
}
inline void ask_Packets16(RTCScene scene, const TRays& rays, uint8_t* open) {
  ask_Packets<RTCRay16>(scene, rays, open, rtcOccluded16);
}

// A block as a stream of arrays of components, those of the rays read where they lie.
inline void ask_Stream(RTCScene scene, const TRays& rays, uint8_t* open) {
  each_Block(rays.count(), [&](size_t first, size_t end) {
    RTCIntersectContext context = make_Context(rays);
    std::vector<float> zero(end - first), far(end - first, kEndless);
    std::vector<unsigned> mask(end - first, ~0u), none(end - first);
    const auto from = [&](const std::vector<float>& of) {
      return const_cast<float*>(of.data()) + first;  // only far is written
    };
    RTCRayNp block = {};
    block.org_x = from(rays.org[0]), block.org_y = from(rays.org[1]);
    block.org_z = from(rays.org[2]), block.dir_x = from(rays.dir[0]);
    block.dir_y = from(rays.dir[1]), block.dir_z = from(rays.dir[2]);
    block.tnear = block.time = zero.data(), block.tfar = far.data();
    block.mask = mask.data(), block.id = block.flags = none.data();
    rtcOccludedNp(scene, &context, &block, static_cast<unsigned>(end - first));
    for (size_t i = first; i < end; ++i) open[i] = is_Open(far[i - first]);
  });
}

// The ways to ask, the families by which the table sums them up.
struct TKernelForm {
  const char* family;
  const char* name;
  void (*ask)(RTCScene, const TRays&, uint8_t*);
};
inline constexpr TKernelForm kKernelForms[] = {{"single", "1", ask_Single},
                                               {"packets", "8", ask_Packets8},
                                               {"packets", "16", ask_Packets16},
                                               {"stream", "1024", ask_Stream}};

}  // namespace versus
