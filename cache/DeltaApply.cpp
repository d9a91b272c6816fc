#include "cache/DeltaApply.h"

#include <cstring>

namespace postblend {

namespace {

typedef int32_t v4i __attribute__((vector_size(16)));
typedef uint32_t v4u __attribute__((vector_size(16)));

#if defined(__clang__)
#define PC_SHUFFLE(a, b, i0, i1, i2, i3) __builtin_shufflevector(a, b, i0, i1, i2, i3)
#else
#define PC_SHUFFLE(a, b, i0, i1, i2, i3) __builtin_shuffle(a, b, v4i{i0, i1, i2, i3})
#endif

// On x86 hosts the loop is also built for AVX2 (native 32-bit vector multiply) and picked at
// load time; integer arithmetic, so every version gives the same bits. Not under sanitizers:
// their runtimes are not ready when the loader runs the version resolver.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__ANDROID__) && \
    !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)
#define PC_MULTIVERSION __attribute__((target_clones("avx2", "default")))
#else
#define PC_MULTIVERSION
#endif

inline v4i load(const void* p) {
  v4i v;
  std::memcpy(&v, p, sizeof(v));
  return v;
}

inline void store(void* p, v4i v) { std::memcpy(p, &v, sizeof(v)); }

// to = from + add in the output lanes, to's own words elsewhere.
__attribute__((always_inline)) inline void blend(const char* from, char* to, v4i add, v4i lanes) {
  // Unsigned lanes: the codes wrap as 32-bit unsigned values, as in the word-by-word form.
  const v4i sum =
      reinterpret_cast<v4i>(reinterpret_cast<v4u>(load(from)) + reinterpret_cast<v4u>(add));
  store(to, lanes ? sum : load(to));  // one blend instruction where the target has one
}

}  // namespace

PC_MULTIVERSION
void applyDeltaQ12(const lut3d_info& base, lut3d_info& target, const int32_t* deltas, uint32_t w) {
  // Four entries are 24 words, six vectors: in in in OUT | OUT OUT in in | in OUT OUT OUT, twice.
  // The deltas are interleaved into those output lanes; the input lanes keep the target's words.
  const v4i outLanes[3] = {{0, 0, 0, -1}, {-1, -1, 0, 0}, {0, -1, -1, -1}};
  const v4u wv = {w, w, w, w};
  const char* b = reinterpret_cast<const char*>(base.entries);
  char* t = reinterpret_cast<char*>(target.entries);
  uint32_t i = 0;
  for (; i + 4 <= kLut3dEntries; i += 4) {
    const v4i r = reinterpret_cast<v4i>(reinterpret_cast<v4u>(load(deltas + i)) * wv) >> 12;
    const v4i g =
        reinterpret_cast<v4i>(reinterpret_cast<v4u>(load(deltas + kLut3dEntries + i)) * wv) >> 12;
    const v4i bl =
        reinterpret_cast<v4i>(reinterpret_cast<v4u>(load(deltas + 2 * kLut3dEntries + i)) * wv) >>
        12;
    const v4i gbLow = PC_SHUFFLE(g, bl, 0, 4, 1, 5);
    const v4i gbHigh = PC_SHUFFLE(g, bl, 2, 6, 3, 7);
    const char* from = b + sizeof(lut3d_entry) * i;
    char* to = t + sizeof(lut3d_entry) * i;
    blend(from, to, PC_SHUFFLE(r, r, 0, 0, 0, 0), outLanes[0]);
    blend(from + 16, to + 16, gbLow, outLanes[1]);
    blend(from + 32, to + 32, PC_SHUFFLE(r, gbLow, 1, 1, 6, 7), outLanes[2]);
    blend(from + 48, to + 48, PC_SHUFFLE(r, r, 2, 2, 2, 2), outLanes[0]);
    blend(from + 64, to + 64, gbHigh, outLanes[1]);
    blend(from + 80, to + 80, PC_SHUFFLE(r, gbHigh, 3, 3, 6, 7), outLanes[2]);
  }
  for (; i < kLut3dEntries; ++i) {
    for (int c = 0; c < 3; ++c) {
      target.entries[i].out[c] =
          base.entries[i].out[c] + scaledDeltaQ12(deltas[c * kLut3dEntries + i], w);
    }
  }
}

}  // namespace postblend
