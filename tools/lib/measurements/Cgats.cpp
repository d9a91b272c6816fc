#include "tools/lib/measurements/Cgats.h"

#include <cmath>
#include <cstdlib>
#include <fstream>

#include "tools/lib/common/FileAccess.h"

namespace pctool {

namespace {

struct Token {
  std::string text;
  bool quoted = false;
};

// Splits a line into blank-separated tokens; a double-quoted string is one token and '#'
// outside quotes ends the line. False for a quote left open.
bool tokenize(const std::string& line, std::vector<Token>* out) {
  out->clear();
  size_t i = 0;
  while (i < line.size()) {
    const char c = line[i];
    if (c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v') {
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

bool parseCount(const std::vector<Token>& t, size_t limit, size_t* out) {
  if (t.size() != 2 || t[1].quoted || t[1].text.empty()) return false;
  for (char c : t[1].text)
    if (c < '0' || c > '9') return false;
  if (t[1].text.size() > 9) return false;
  *out = std::stoul(t[1].text);
  return *out <= limit;
}

enum class Where { Header, Format, Data };

}  // namespace

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

bool parseCgats(const std::string& text, const std::string& source, CgatsFile* out, std::string* error) {
  out->tables.clear();
  int lineNo = 0;
  auto bad = [&](const std::string& why) {
    if (error) *error = source + ":" + std::to_string(lineNo) + ": " + why;
    return false;
  };
  if (text.size() > kCgatsMaxFileBytes)
    return bad("larger than " + std::to_string(kCgatsMaxFileBytes >> 20) + " MiB: not a measurement file");
  if (text.find('\0') != std::string::npos) return bad("binary data: not a CGATS text file");

  CgatsTable cur;
  bool started = false;  // `cur` has anything in it
  size_t declaredFields = 0, declaredSets = 0;
  bool haveFields = false, haveSets = false, haveFormat = false;
  Where where = Where::Header;
  std::vector<Token> t;
  // Field names from token `from` on, up to END_DATA_FORMAT.
  auto formatTokens = [&](size_t from) {
    for (size_t i = from; i < t.size(); ++i) {
      if (!t[i].quoted && t[i].text == "END_DATA_FORMAT") {
        if (cur.fields.empty()) return bad("the data format names no field");
        if (haveFields && declaredFields != cur.fields.size())
          return bad("NUMBER_OF_FIELDS says " + std::to_string(declaredFields) + ", the data format names " +
                     std::to_string(cur.fields.size()));
        haveFormat = true;
        where = Where::Header;
        return true;
      }
      if (cur.fields.size() >= kCgatsMaxFields) return bad("more than " + std::to_string(kCgatsMaxFields) + " fields");
      if (cur.field(t[i].text) >= 0) return bad("field '" + t[i].text + "' named twice");
      cur.fields.push_back(t[i].text);
    }
    return true;
  };
  size_t pos = 0;
  while (pos < text.size()) {
    const size_t nl = text.find('\n', pos);
    const size_t end = nl == std::string::npos ? text.size() : nl;
    ++lineNo;
    if (end - pos > kCgatsMaxLineBytes)
      return bad("line longer than " + std::to_string(kCgatsMaxLineBytes) + " characters");
    const std::string line = text.substr(pos, end - pos);
    pos = end + 1;
    if (!tokenize(line, &t)) return bad("a quoted string is not closed");
    if (t.empty()) continue;
    const std::string key = t[0].quoted ? std::string() : t[0].text;

    if (where == Where::Format) {
      if (!formatTokens(0)) return false;
      continue;
    }
    if (where == Where::Data) {
      if (key == "END_DATA" && t.size() == 1) {
        if (haveSets && declaredSets != cur.rows.size())
          return bad("NUMBER_OF_SETS says " + std::to_string(declaredSets) + ", the table holds " +
                     std::to_string(cur.rows.size()) + " rows");
        if (out->tables.size() >= kCgatsMaxTables)
          return bad("more than " + std::to_string(kCgatsMaxTables) + " tables");
        out->tables.push_back(std::move(cur));
        cur = CgatsTable{};
        started = haveFields = haveSets = haveFormat = false;
        where = Where::Header;
        continue;
      }
      if (t.size() != cur.fields.size())
        return bad("row has " + std::to_string(t.size()) + " values, the data format names " +
                   std::to_string(cur.fields.size()) + " fields");
      if (cur.rows.size() >= kCgatsMaxSets) return bad("more than " + std::to_string(kCgatsMaxSets) + " rows");
      std::vector<std::string> row;
      row.reserve(t.size());
      for (auto& tok : t) row.push_back(std::move(tok.text));
      cur.rows.push_back(std::move(row));
      cur.rowLines.push_back(lineNo);
      continue;
    }

    // Header.
    if (!started) cur.line = lineNo;
    if (key == "BEGIN_DATA_FORMAT") {
      if (haveFormat) return bad("a second data format in one table");
      where = Where::Format;
      started = true;
      // Field names may follow on the same line.
      if (!formatTokens(1)) return false;
    } else if (key == "BEGIN_DATA") {
      if (!haveFormat) return bad("BEGIN_DATA before BEGIN_DATA_FORMAT .. END_DATA_FORMAT");
      where = Where::Data;
    } else if (key == "END_DATA" || key == "END_DATA_FORMAT") {
      return bad(key + " without its BEGIN");
    } else if (key == "NUMBER_OF_FIELDS") {
      if (!parseCount(t, kCgatsMaxFields, &declaredFields))
        return bad("NUMBER_OF_FIELDS needs a whole number up to " + std::to_string(kCgatsMaxFields));
      if (haveFormat && declaredFields != cur.fields.size())
        return bad("NUMBER_OF_FIELDS says " + std::to_string(declaredFields) + ", the data format names " +
                   std::to_string(cur.fields.size()));
      haveFields = started = true;
    } else if (key == "NUMBER_OF_SETS") {
      if (!parseCount(t, kCgatsMaxSets, &declaredSets))
        return bad("NUMBER_OF_SETS needs a whole number up to " + std::to_string(kCgatsMaxSets));
      haveSets = started = true;
    } else if (!started && t.size() == 1 && !t[0].quoted) {
      cur.identifier = t[0].text;
      started = true;
    } else if (key.empty()) {
      return bad("a keyword line starts with a quoted string");
    } else {
      std::string value;
      for (size_t i = 1; i < t.size(); ++i) value += (i > 1 ? " " : "") + t[i].text;
      cur.keywords.emplace_back(key, value);
      cur.keywordLines.push_back(lineNo);
      started = true;
    }
  }
  if (where == Where::Format) return bad("no END_DATA_FORMAT before the end of the file");
  if (where == Where::Data) return bad("no END_DATA before the end of the file");
  if (started) {
    lineNo = cur.line;
    return bad("table has no BEGIN_DATA .. END_DATA");
  }
  if (out->tables.empty()) return bad("no CGATS table (BEGIN_DATA_FORMAT .. BEGIN_DATA .. END_DATA)");
  return true;
}

bool readCgatsFile(const std::string& path, CgatsFile* out, std::string* error) {
  std::string why;
  if (!checkInputFile(path, why)) {
    if (error) *error = path + ": " + why;
    return false;
  }
  std::ifstream in(path, std::ios::binary);
  std::string text;
  std::vector<char> buf(64 * 1024);
  while (in && text.size() <= kCgatsMaxFileBytes) {
    in.read(buf.data(), static_cast<std::streamsize>(buf.size()));
    text.append(buf.data(), static_cast<size_t>(in.gcount()));
  }
  if (in.bad()) {
    if (error) *error = path + ": cannot read";
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
