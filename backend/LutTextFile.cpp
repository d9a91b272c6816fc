#include "backend/LutTextFile.h"

#include <cstdint>
#include <cstring>
#include <vector>

#include "base/LutGrid.h"

namespace postblend {

namespace {

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Walks the text, counting lines.
struct Cursor {
  const char* data;
  size_t size;
  size_t pos = 0;
  uint32_t line = 1;

  void skipBlanks() {
    while (pos < size && isBlank(data[pos])) {
      if (data[pos] == '\n') ++line;
      ++pos;
    }
  }
  // The token starting here, up to the next blank, shortened for a message.
  std::string token() const {
    size_t end = pos;
    while (end < size && !isBlank(data[end])) ++end;
    return std::string(data + pos, end - pos).substr(0, 20);
  }
  void skipToken() {
    while (pos < size && !isBlank(data[pos])) ++pos;
  }
};

std::string lineText(uint32_t line) { return "line " + std::to_string(line) + " malformed: "; }

// The first entry whose inputs are not the grid node it stands for.
void checkOrder(const lut3d_info& lut, const std::vector<uint32_t>& entryLine, LutTextRead& r) {
  for (uint32_t n = 0; n < kLut3dEntries; ++n) {
    const lut3d_entry& e = lut.entries[n];
    const uint32_t want[3] = {lutGridCode(n % kLut3dGridSize),
                              lutGridCode(n / kLut3dGridSize % kLut3dGridSize),
                              lutGridCode(n / (kLut3dGridSize * kLut3dGridSize))};
    if (e.in[0] == want[0] && e.in[1] == want[1] && e.in[2] == want[2]) continue;
    char buf[240];
    std::snprintf(buf, sizeof buf,
                  "entries out of order: entry %u (line %u) has inputs %u %u %u, expected %u %u %u "
                  "(red fastest: entry n = 289 b + 17 g + r)",
                  n, entryLine[n], e.in[0], e.in[1], e.in[2], want[0], want[1], want[2]);
    std::string message = buf;
    const lut3d_entry& second = lut.entries[1];
    if (second.in[0] == 0 && second.in[1] == 0 && second.in[2] == lutGridCode(1)) {
      message += "; the file lists blue fastest";
    }
    r.diagnosis.note(LutTextProblem::OutOfOrder, entryLine[n], message);
    return;
  }
}

}  // namespace

LutTextRead LutTextFile::parse(const char* data, size_t size, lut3d_info* lut) {
  LutTextRead r;
  if (lut == nullptr) return r;
  std::memset(lut->entries, 0, sizeof(lut->entries));
  if (data == nullptr) size = 0;
  if (size > kMaxBytes) {
    size = kMaxBytes;
    r.diagnosis.note(
        LutTextProblem::TooLarge, 0,
        "too large for a LUT text file (over " + std::to_string(kMaxBytes >> 20) + " MiB)");
  }
  Cursor at{data, size};
  std::vector<uint32_t> entryLine(kLut3dEntries, 0);
  bool stopped = false;
  while (r.values < kValueCount) {
    at.skipBlanks();
    if (at.pos == at.size) break;
    if (!isDigit(at.data[at.pos])) {
      r.diagnosis.note(LutTextProblem::Malformed, at.line,
                       lineText(at.line) + "'" + at.token() + "' is not a 12-bit code");
      stopped = true;
      break;
    }
    const std::string token = at.token();
    uint64_t v = 0;
    while (at.pos < at.size && isDigit(at.data[at.pos])) {
      v = v * 10 + static_cast<uint64_t>(at.data[at.pos] - '0');
      if (v > UINT32_MAX) v = UINT32_MAX;
      ++at.pos;
    }
    // Digits run into another character: they count, and reading stops right after them.
    const bool cut = at.pos < at.size && !isBlank(at.data[at.pos]);
    if (cut) {
      r.diagnosis.note(LutTextProblem::Malformed, at.line,
                       lineText(at.line) + "'" + token + "' is not a 12-bit code");
    } else if (v > kLutMaxCode) {
      r.diagnosis.note(LutTextProblem::AboveRange, at.line,
                       lineText(at.line) + token + " is above 4095");
    }
    const int entry = r.values / kValuesPerEntry;
    const int slot = r.values % kValuesPerEntry;
    lut3d_entry& e = lut->entries[entry];
    if (slot == 0) entryLine[entry] = at.line;
    (slot < 3 ? e.in[slot] : e.out[slot - 3]) = static_cast<uint32_t>(v);
    ++r.values;
    ++r.tokens;
    if (cut) {
      stopped = true;
      break;
    }
  }
  if (!stopped && r.values == kValueCount) {
    for (at.skipBlanks(); at.pos < at.size; at.skipBlanks()) {
      at.skipToken();
      ++r.tokens;
    }
  }
  if (r.values < kValueCount) {
    r.diagnosis.note(LutTextProblem::TooFew, 0,
                     "not a LUT: " + std::to_string(r.values) + " of 29478 numbers");
  }
  if (r.diagnosis.ok()) checkOrder(*lut, entryLine, r);
  return r;
}

int LutTextFile::read(FILE* in, lut3d_info* lut) {
  if (lut == nullptr) return 0;
  std::string text;
  if (in != nullptr) {
    char chunk[65536];
    size_t n;
    // One byte past the limit lets the parser tell an oversized file.
    while (text.size() <= kMaxBytes && (n = fread(chunk, 1, sizeof(chunk), in)) > 0) {
      text.append(chunk, n);
    }
  }
  return parse(text.data(), text.size(), lut).values;
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

}  // namespace postblend
