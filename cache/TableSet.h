// A panel's tables as frames see them: an immutable set, built aside by the job that made the
// tables and published whole (cache/TablePublication.h), and the view a frame copies from.
#pragma once

#include <cstdint>
#include <memory>

#include "base/Hardening.h"
#include "postblend/color_records.h"

namespace postblend {

// The most tables a panel holds (the colour-management debug switch on).
constexpr uint32_t kMaxTables = 8;

// Never written once published; freed only when no frame or job uses it.
struct TableSet {
  explicit TableSet(uint32_t n);

  uint64_t generation = 0;  // unique per set in the process: tells a new set from a freed one
  uint32_t count = 0;       // N, as the panel's build area had it
  uint32_t made = 0;        // tables 0..made-1 were generated or loaded whole
  TableVerdict verdict[kMaxTables] = {};
  std::unique_ptr<lut3d_info[]> tables;  // N
  std::unique_ptr<int32_t[]> deltas;     // N / 2 planar blocks of 3 x 4913
};

// What one frame copies from: the even tables of the pinned set and the object's own odd tables,
// interpolated for the brightness (or, for single-threaded callers, the build area itself).
struct FrameTables {
  uint32_t slots = 0;     // N for the index checks; may be non-zero while `present` is false
  bool present = false;   // tables and deltas exist
  const lut3d_info* table[kMaxTables] = {};
  lut3d_info* odd[kMaxTables] = {};  // where interpolation writes odd table k
  const int32_t* deltas = nullptr;
  // Bit k: verdict[k] is known (else the hardened hand-off works it out).
  uint32_t judged = 0;
  TableVerdict verdict[kMaxTables] = {};
};

}  // namespace postblend
