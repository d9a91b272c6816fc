// The lexical side of CGATS text (Cgats.h holds the grammar): the text cut into lines, each line
// into tokens, and the keywords the grammar acts on told apart from other words.
//
// A token is a run of characters up to a blank, a '"' or a '#', or a double-quoted string (one
// token, quotes removed, blanks kept). '#' outside quotes ends the line. Lines without tokens
// are skipped but counted. Refused: a text over kCgatsMaxFileBytes, one holding a NUL byte, a
// line over kCgatsMaxLineBytes, a quote left open.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace pctool {

constexpr size_t kCgatsMaxFileBytes = 8u << 20;
constexpr size_t kCgatsMaxLineBytes = 4096;

struct CgatsToken {
  std::string text;
  bool quoted = false;
};

enum class CgatsSymbol {
  Word,  // any other unquoted token
  Quoted,
  BeginDataFormat,
  EndDataFormat,
  BeginData,
  EndData,
  NumberOfFields,
  NumberOfSets,
};
CgatsSymbol cgatsSymbol(const CgatsToken& token);

class CgatsScanner {
 public:
  // `text` must outlive the scanner.
  explicit CgatsScanner(const std::string& text);

  // The tokens of the next line that has any; false at the end of the text or on a fault.
  bool next(std::vector<CgatsToken>* tokens);
  // The number of the line last read (0 before the first).
  int line() const { return mLine; }
  // Why scanning stopped early; empty at the end of the text.
  const std::string& fault() const { return mFault; }

 private:
  const std::string& mText;
  size_t mPos = 0;
  int mLine = 0;
  std::string mFault;
};

}  // namespace pctool
