#include "tools/lib/measurements/CgatsTokens.h"

namespace pctool {

namespace {

bool blank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }

// False for a quote left open.
bool tokenize(const std::string& line, std::vector<CgatsToken>* out) {
  out->clear();
  size_t i = 0;
  while (i < line.size()) {
    const char c = line[i];
    if (blank(c)) {
      ++i;
    } else if (c == '#') {
      break;
    } else if (c == '"') {
      const size_t close = line.find('"', i + 1);
      if (close == std::string::npos) return false;
      out->push_back({line.substr(i + 1, close - i - 1), true});
      i = close + 1;
    } else {
      size_t j = i;
      while (j < line.size() && line[j] != ' ' && line[j] != '\t' && line[j] != '\r' && line[j] != '"' &&
             line[j] != '#')
        ++j;
      out->push_back({line.substr(i, j - i), false});
      i = j;
    }
  }
  return true;
}

}  // namespace

CgatsSymbol cgatsSymbol(const CgatsToken& t) {
  if (t.quoted) return CgatsSymbol::Quoted;
  static const struct {
    const char* word;
    CgatsSymbol symbol;
  } kKeywords[] = {
      {"BEGIN_DATA_FORMAT", CgatsSymbol::BeginDataFormat}, {"END_DATA_FORMAT", CgatsSymbol::EndDataFormat},
      {"BEGIN_DATA", CgatsSymbol::BeginData},              {"END_DATA", CgatsSymbol::EndData},
      {"NUMBER_OF_FIELDS", CgatsSymbol::NumberOfFields},   {"NUMBER_OF_SETS", CgatsSymbol::NumberOfSets},
  };
  for (const auto& k : kKeywords)
    if (t.text == k.word) return k.symbol;
  return CgatsSymbol::Word;
}

CgatsScanner::CgatsScanner(const std::string& text) : mText(text) {
  if (text.size() > kCgatsMaxFileBytes)
    mFault = "larger than " + std::to_string(kCgatsMaxFileBytes >> 20) + " MiB: not a measurement file";
  else if (text.find('\0') != std::string::npos)
    mFault = "binary data: not a CGATS text file";
}

bool CgatsScanner::next(std::vector<CgatsToken>* tokens) {
  while (mFault.empty() && mPos < mText.size()) {
    const size_t nl = mText.find('\n', mPos);
    const size_t end = nl == std::string::npos ? mText.size() : nl;
    ++mLine;
    if (end - mPos > kCgatsMaxLineBytes) {
      mFault = "line longer than " + std::to_string(kCgatsMaxLineBytes) + " characters";
      return false;
    }
    const std::string line = mText.substr(mPos, end - mPos);
    mPos = end + 1;
    if (!tokenize(line, tokens)) {
      mFault = "a quoted string is not closed";
      return false;
    }
    if (!tokens->empty()) return true;
  }
  return false;
}

}  // namespace pctool
