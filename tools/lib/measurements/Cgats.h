// CGATS text files, as colorimeter software (ArgyllCMS's dispread, spotread, fakeread) reads
// and writes them: `.ti1` patch sets and `.ti3` measurements. The grammar, over the tokens of
// CgatsTokens.h: a file holds one or more tables; each is an identifier line ("CTI1", "CTI3",
// "CAL"), header keywords, the field names between BEGIN_DATA_FORMAT and END_DATA_FORMAT (they
// may share those lines), and one row per line between BEGIN_DATA and END_DATA.
//
// Limits: besides the tokenizer's, kCgatsMaxTables tables, kCgatsMaxFields fields and
// kCgatsMaxSets rows per table. Errors read "SOURCE:LINE: fault".
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "tools/lib/measurements/CgatsTokens.h"

namespace pctool {

struct CgatsTable {
  std::string identifier;  // first line of the table; "" when it starts with a keyword
  int line = 0;            // where the table starts
  std::vector<std::pair<std::string, std::string>> keywords;  // in file order, unquoted
  std::vector<int> keywordLines;
  std::vector<std::string> fields;
  std::vector<std::vector<std::string>> rows;  // each as many values as fields, unquoted
  std::vector<int> rowLines;

  // The value of the first `name` keyword, or nullptr; `line` is where it stands.
  const std::string* keyword(const std::string& name, int* line = nullptr) const;
  // Column of `name`, or -1.
  int field(const std::string& name) const;
};

struct CgatsFile {
  std::vector<CgatsTable> tables;
};

constexpr size_t kCgatsMaxTables = 16;
constexpr size_t kCgatsMaxFields = 256;
constexpr size_t kCgatsMaxSets = 100000;

// Parses `text`; `source` names it in errors. False with "SOURCE:LINE: fault" for an
// unterminated quote, a line too long, a data format or data block without its end, a
// NUMBER_OF_FIELDS or NUMBER_OF_SETS that disagrees with what follows, a row with the wrong
// number of values, a repeated field name, or no table at all.
bool parseCgats(const std::string& text, const std::string& source, CgatsFile* out, std::string* error);

// Reads and parses a file, refusing one larger than kCgatsMaxFileBytes or holding binary data.
bool readCgatsFile(const std::string& path, CgatsFile* out, std::string* error);

// The first table whose identifier is `identifier`, else the first table (nullptr when none).
const CgatsTable* pickCgatsTable(const CgatsFile& file, const std::string& identifier);

// The table as CGATS text: keywords are written quoted, field values as given.
std::string formatCgats(const CgatsTable& table);

// A whole token that is a finite number.
bool cgatsNumber(const std::string& token, double* out);

}  // namespace pctool
