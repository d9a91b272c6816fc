// Line by line through a text the workbench was handed, with the line numbers its errors name
// and a bound on a line's length. A trailing '\r' (a file from Windows) is dropped.
#pragma once

#include <cstddef>
#include <string>

namespace pctool {

class TextLines {
 public:
  TextLines(const std::string& text, size_t maxLineBytes) : text_(text), max_(maxLineBytes) {}

  // The next line into `line`; false at the end, or on a line over the bound with `error`
  // set to "line N too long (over M characters)".
  bool next(std::string& line, std::string& error) {
    if (pos_ >= text_.size()) return false;
    const size_t nl = text_.find('\n', pos_);
    const size_t end = nl == std::string::npos ? text_.size() : nl;
    ++lineNo_;
    if (end - pos_ > max_) {
      error = "line " + std::to_string(lineNo_) + " too long (over " + std::to_string(max_) + " characters)";
      pos_ = text_.size();
      return false;
    }
    line.assign(text_, pos_, end - pos_);
    pos_ = end + 1;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
  }

  size_t lineNo() const { return lineNo_; }

 private:
  const std::string& text_;
  size_t max_;
  size_t pos_ = 0, lineNo_ = 0;
};

}  // namespace pctool
