#include "tools/lib/measurements/Cgats.h"

#include <cmath>
#include <cstdlib>

#include "tools/lib/common/FileAccess.h"

namespace pctool {

const std::string* CgatsTable::keyword(const std::string& name, int* line) const {
  for (size_t i = 0; i < keywords.size(); ++i)
    if (keywords[i].first == name) {
      if (line) *line = i < keywordLines.size() ? keywordLines[i] : this->line;
      return &keywords[i].second;
    }
  return nullptr;
}

int CgatsTable::field(const std::string& name) const {
  for (size_t i = 0; i < fields.size(); ++i)
    if (fields[i] == name) return static_cast<int>(i);
  return -1;
}

namespace {

bool parseCount(const std::vector<CgatsToken>& t, size_t limit, size_t* out) {
  if (t.size() != 2 || t[1].quoted || t[1].text.empty()) return false;
  for (char c : t[1].text)
    if (c < '0' || c > '9') return false;
  if (t[1].text.size() > 9) return false;
  *out = std::stoul(t[1].text);
  return *out <= limit;
}

enum class Where { Header, Format, Data };

// The grammar's state between lines: the table being read and where in it the reader is.
class CgatsParser {
 public:
  CgatsParser(const std::string& text, const std::string& source, CgatsFile* out, std::string* error)
      : mScan(text), mSource(source), mOut(out), mError(error) {}

  bool parse() {
    mOut->tables.clear();
    while (mScan.next(&mTokens)) {
      const bool ok = mWhere == Where::Format ? formatTokens(0) : mWhere == Where::Data ? dataLine() : headerLine();
      if (!ok) return false;
    }
    if (!mScan.fault().empty()) return bad(mScan.fault());
    if (mWhere == Where::Format) return bad("no END_DATA_FORMAT before the end of the file");
    if (mWhere == Where::Data) return bad("no END_DATA before the end of the file");
    if (mStarted) return bad("table has no BEGIN_DATA .. END_DATA", mCur.line);
    if (mOut->tables.empty()) return bad("no CGATS table (BEGIN_DATA_FORMAT .. BEGIN_DATA .. END_DATA)");
    return true;
  }

 private:
  bool bad(const std::string& why, int line = -1) {
    if (mError) *mError = mSource + ":" + std::to_string(line < 0 ? mScan.line() : line) + ": " + why;
    return false;
  }

  bool fieldCountAgrees() {
    if (!mHaveFields || !mHaveFormat || mDeclaredFields == mCur.fields.size()) return true;
    return bad("NUMBER_OF_FIELDS says " + std::to_string(mDeclaredFields) + ", the data format names " +
               std::to_string(mCur.fields.size()));
  }

  // Field names from token `from` on, up to END_DATA_FORMAT.
  bool formatTokens(size_t from) {
    for (size_t i = from; i < mTokens.size(); ++i) {
      if (cgatsSymbol(mTokens[i]) == CgatsSymbol::EndDataFormat) {
        if (mCur.fields.empty()) return bad("the data format names no field");
        mHaveFormat = true;
        mWhere = Where::Header;
        return fieldCountAgrees();
      }
      if (mCur.fields.size() >= kCgatsMaxFields)
        return bad("more than " + std::to_string(kCgatsMaxFields) + " fields");
      if (mCur.field(mTokens[i].text) >= 0) return bad("field '" + mTokens[i].text + "' named twice");
      mCur.fields.push_back(mTokens[i].text);
    }
    return true;
  }

  bool dataLine() {
    if (mTokens.size() == 1 && cgatsSymbol(mTokens[0]) == CgatsSymbol::EndData) {
      if (mHaveSets && mDeclaredSets != mCur.rows.size())
        return bad("NUMBER_OF_SETS says " + std::to_string(mDeclaredSets) + ", the table holds " +
                   std::to_string(mCur.rows.size()) + " rows");
      if (mOut->tables.size() >= kCgatsMaxTables)
        return bad("more than " + std::to_string(kCgatsMaxTables) + " tables");
      mOut->tables.push_back(std::move(mCur));
      mCur = CgatsTable{};
      mStarted = mHaveFields = mHaveSets = mHaveFormat = false;
      mWhere = Where::Header;
      return true;
    }
    if (mTokens.size() != mCur.fields.size())
      return bad("row has " + std::to_string(mTokens.size()) + " values, the data format names " +
                 std::to_string(mCur.fields.size()) + " fields");
    if (mCur.rows.size() >= kCgatsMaxSets) return bad("more than " + std::to_string(kCgatsMaxSets) + " rows");
    std::vector<std::string> row;
    row.reserve(mTokens.size());
    for (auto& tok : mTokens) row.push_back(std::move(tok.text));
    mCur.rows.push_back(std::move(row));
    mCur.rowLines.push_back(mScan.line());
    return true;
  }

  bool headerLine() {
    if (!mStarted) mCur.line = mScan.line();
    switch (cgatsSymbol(mTokens[0])) {
      case CgatsSymbol::BeginDataFormat:
        if (mHaveFormat) return bad("a second data format in one table");
        mWhere = Where::Format;
        mStarted = true;
        return formatTokens(1);  // field names may follow on the same line
      case CgatsSymbol::BeginData:
        if (!mHaveFormat) return bad("BEGIN_DATA before BEGIN_DATA_FORMAT .. END_DATA_FORMAT");
        mWhere = Where::Data;
        return true;
      case CgatsSymbol::EndData:
      case CgatsSymbol::EndDataFormat:
        return bad(mTokens[0].text + " without its BEGIN");
      case CgatsSymbol::NumberOfFields:
        if (!parseCount(mTokens, kCgatsMaxFields, &mDeclaredFields))
          return bad("NUMBER_OF_FIELDS needs a whole number up to " + std::to_string(kCgatsMaxFields));
        mHaveFields = mStarted = true;
        return fieldCountAgrees();
      case CgatsSymbol::NumberOfSets:
        if (!parseCount(mTokens, kCgatsMaxSets, &mDeclaredSets))
          return bad("NUMBER_OF_SETS needs a whole number up to " + std::to_string(kCgatsMaxSets));
        mHaveSets = mStarted = true;
        return true;
      case CgatsSymbol::Quoted:
        return bad("a keyword line starts with a quoted string");
      case CgatsSymbol::Word:
        break;
    }
    if (!mStarted && mTokens.size() == 1) {
      mCur.identifier = mTokens[0].text;
      mStarted = true;
      return true;
    }
    std::string value;
    for (size_t i = 1; i < mTokens.size(); ++i) value += (i > 1 ? " " : "") + mTokens[i].text;
    mCur.keywords.emplace_back(mTokens[0].text, value);
    mCur.keywordLines.push_back(mScan.line());
    mStarted = true;
    return true;
  }

  CgatsScanner mScan;
  const std::string& mSource;
  CgatsFile* mOut;
  std::string* mError;
  std::vector<CgatsToken> mTokens;
  CgatsTable mCur;
  bool mStarted = false;  // mCur has anything in it
  size_t mDeclaredFields = 0, mDeclaredSets = 0;
  bool mHaveFields = false, mHaveSets = false, mHaveFormat = false;
  Where mWhere = Where::Header;
};

}  // namespace

bool parseCgats(const std::string& text, const std::string& source, CgatsFile* out, std::string* error) {
  return CgatsParser(text, source, out, error).parse();
}

bool readCgatsFile(const std::string& path, CgatsFile* out, std::string* error) {
  std::string text, why;
  if (!readInputFile(path, kCgatsMaxFileBytes, text, why)) {
    if (error) *error = path + ": " + why;
    return false;
  }
  return parseCgats(text, path, out, error);
}

const CgatsTable* pickCgatsTable(const CgatsFile& file, const std::string& identifier) {
  for (const auto& t : file.tables)
    if (t.identifier == identifier) return &t;
  return file.tables.empty() ? nullptr : &file.tables.front();
}

std::string formatCgats(const CgatsTable& table) {
  std::string o = (table.identifier.empty() ? std::string("CGATS.17") : table.identifier) + "\n\n";
  for (const auto& k : table.keywords) o += k.first + " \"" + k.second + "\"\n";
  o += "\nNUMBER_OF_FIELDS " + std::to_string(table.fields.size()) + "\nBEGIN_DATA_FORMAT\n";
  for (const auto& f : table.fields) o += f + " ";
  o += "\nEND_DATA_FORMAT\n\nNUMBER_OF_SETS " + std::to_string(table.rows.size()) + "\nBEGIN_DATA\n";
  for (const auto& row : table.rows) {
    for (size_t i = 0; i < row.size(); ++i) o += (i ? " " : "") + row[i];
    o += "\n";
  }
  return o + "END_DATA\n";
}

bool cgatsNumber(const std::string& token, double* out) {
  if (token.empty()) return false;
  char* end = nullptr;
  const double d = std::strtod(token.c_str(), &end);
  if (end != token.c_str() + token.size() || !std::isfinite(d)) return false;
  *out = d;
  return true;
}

}  // namespace pctool
