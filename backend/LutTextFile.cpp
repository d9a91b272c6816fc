#include "backend/LutTextFile.h"

#include <cstdint>
#include <cstring>

namespace snapdragoncolor {

namespace {

bool isBlank(int c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

bool isDigit(int c) { return c >= '0' && c <= '9'; }

// Next unsigned decimal number of the stream; false at the end or at a malformed character.
bool nextValue(FILE* in, uint32_t* value) {
  int c = getc(in);
  while (c != EOF && isBlank(c)) c = getc(in);
  if (!isDigit(c)) return false;
  uint64_t v = 0;
  while (isDigit(c)) {
    v = v * 10 + static_cast<uint64_t>(c - '0');
    if (v > UINT32_MAX) v = UINT32_MAX;
    c = getc(in);
  }
  if (c != EOF) ungetc(c, in);
  *value = static_cast<uint32_t>(v);
  return true;
}

}  // namespace

int LutTextFile::read(FILE* in, lut3d_info* lut) {
  if (lut == nullptr) return 0;
  std::memset(lut->entries, 0, sizeof(lut->entries));
  if (in == nullptr) return 0;
  int count = 0;
  for (lut3d_entry& e : lut->entries) {
    uint32_t* slots[kValuesPerEntry] = {&e.in[0],  &e.in[1],  &e.in[2],
                                        &e.out[0], &e.out[1], &e.out[2]};
    for (uint32_t* slot : slots) {
      if (!nextValue(in, slot)) return count;
      ++count;
    }
  }
  return count;
}

int LutTextFile::readFile(const char* path, lut3d_info* lut) {
  FILE* in = path != nullptr ? fopen(path, "r") : nullptr;
  if (in == nullptr) return -1;
  const int n = read(in, lut);
  fclose(in);
  return n;
}

bool LutTextFile::write(FILE* out, const lut3d_info& lut) {
  if (out == nullptr) return false;
  for (const lut3d_entry& e : lut.entries) {
    if (fprintf(out, "%u %u %u %u %u %u\n", e.in[0], e.in[1], e.in[2], e.out[0], e.out[1],
                e.out[2]) < 0) {
      return false;
    }
  }
  return ferror(out) == 0;
}

bool LutTextFile::writeFile(const char* path, const lut3d_info& lut) {
  FILE* out = path != nullptr ? fopen(path, "w") : nullptr;
  if (out == nullptr) return false;
  const bool ok = write(out, lut);
  return fclose(out) == 0 && ok;
}

}  // namespace snapdragoncolor
