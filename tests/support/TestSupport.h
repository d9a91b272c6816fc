// Helpers shared by the tests: a log capture, a throw-away device root, and a reset of the
// process-wide plugin state.
#pragma once

#include <string>
#include <vector>

namespace pctest {

struct LogLine {
  int prio;
  std::string tag;
  std::string text;
};

// Captures every log line while alive; echo to stderr is off unless PC_TEST_LOG_ECHO is set.
class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  std::vector<LogLine> lines() const;
  // Lines whose text equals `text` exactly (tag ignored when empty).
  int count(const std::string& text, const std::string& tag = "") const;
  // Lines whose text contains `part`.
  int countContaining(const std::string& part, const std::string& tag = "") const;
  bool has(const std::string& text, const std::string& tag = "") const { return count(text, tag) > 0; }
  void clear();
  std::string dump() const;  // all lines, for failure messages
};

// A fresh temporary folder used as PANELCORVANE_ROOT for the test's lifetime.
class TempRoot {
 public:
  TempRoot();
  ~TempRoot();
  const std::string& path() const { return mPath; }
  // Writes `content` at ROOT + devicePath, creating folders.
  void write(const std::string& devicePath, const std::string& content) const;
  void writeBytes(const std::string& devicePath, const void* data, size_t size) const;
  std::string read(const std::string& devicePath) const;
  bool exists(const std::string& devicePath) const;
  void remove(const std::string& devicePath) const;
  std::string host(const std::string& devicePath) const { return mPath + devicePath; }

 private:
  std::string mPath;
};

// Puts every static of the plugin's shared state back to its start value, sets pauses to 0.
void resetSharedState();

}  // namespace pctest
