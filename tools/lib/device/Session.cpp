#include "tools/lib/device/Session.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <sstream>

namespace pctool {

namespace {

constexpr size_t kMaxArgs = 64;

bool toInt(const std::string& s, int* out) {
  errno = 0;
  char* end = nullptr;
  long v = strtol(s.c_str(), &end, 0);
  if (end == s.c_str() || *end != '\0' || errno != 0 || v < INT32_MIN || v > INT32_MAX) return false;
  *out = static_cast<int>(v);
  return true;
}

bool toPanel(const std::string& s, int* out) {
  if (s == "primary" || s == "0") *out = 0;
  else if (s == "secondary" || s == "1") *out = 1;
  else return false;
  return true;
}

}  // namespace

bool parseSession(const std::string& script, std::vector<SessionStep>* steps, std::string* error) {
  if (script.size() > kMaxSessionBytes) {
    *error = "script too large";
    return false;
  }
  std::istringstream in(script);
  std::string raw;
  int lineNo = 0;
  while (std::getline(in, raw)) {
    ++lineNo;
    std::string line = raw.substr(0, raw.find('#'));
    std::istringstream words(line);
    std::vector<std::string> w;
    for (std::string t; words >> t;) w.push_back(t);
    if (w.empty()) continue;
    auto fail = [&](const std::string& why) {
      *error = "line " + std::to_string(lineNo) + ": " + why;
      return false;
    };
    if (w.size() > kMaxArgs + 1) return fail("too many words");
    SessionStep step;
    step.line = lineNo;
    step.text = raw;
    const std::string& verb = w[0];
    auto needPanel = [&](SessionStep::Kind kind) {
      step.kind = kind;
      return w.size() == 2 && toPanel(w[1], &step.panel);
    };
    auto intsFrom = [&](size_t first) {
      for (size_t i = first; i < w.size(); ++i) {
        int v = 0;
        if (!toInt(w[i], &v)) return false;
        step.ints.push_back(v);
      }
      return true;
    };
    if (verb == "init") {
      if (!needPanel(SessionStep::kInit)) return fail("usage: init primary|secondary");
    } else if (verb == "deinit") {
      if (!needPanel(SessionStep::kDeInit)) return fail("usage: deinit primary|secondary");
    } else if (verb == "wait-tables") {
      if (!needPanel(SessionStep::kWaitTables)) return fail("usage: wait-tables primary|secondary");
    } else if (verb == "needs-update") {
      if (!needPanel(SessionStep::kNeedsUpdate)) return fail("usage: needs-update primary|secondary");
    } else if (verb == "brightness") {
      step.kind = SessionStep::kBrightness;
      char* end = nullptr;
      if (w.size() != 2) return fail("usage: brightness FRACTION");
      step.fraction = strtod(w[1].c_str(), &end);
      if (*end != '\0' || !std::isfinite(step.fraction)) return fail("brightness is not a number");
    } else if (verb == "frame") {
      step.kind = SessionStep::kFrame;
      bool hdr = w.size() == 5 && w[4] == "hdr";
      if ((w.size() != 4 && !hdr) || !toPanel(w[1], &step.panel)) {
        return fail("usage: frame primary|secondary GAMUT INTENT [hdr]");
      }
      step.hdr = hdr;
      w.resize(4);
      if (!intsFrom(2)) return fail("gamut and intent must be integers");
    } else if (verb == "hidl-set" || verb == "hidl-get") {
      step.kind = verb == "hidl-set" ? SessionStep::kHidlSet : SessionStep::kHidlGet;
      if (w.size() < 2 || !intsFrom(1)) return fail("usage: " + verb + " NUMBER [ARG...]");
    } else if (verb == "aidl-set") {
      step.kind = SessionStep::kAidlSet;
      if (w.size() != 3 || !intsFrom(1)) return fail("usage: aidl-set DISP CMD");
    } else if (verb == "echo") {
      step.kind = SessionStep::kEcho;
      size_t at = line.find("echo");
      step.text = line.substr(at + 4);
      size_t first = step.text.find_first_not_of(" \t");
      step.text = first == std::string::npos ? "" : step.text.substr(first);
    } else {
      return fail("unknown step '" + verb + "'");
    }
    steps->push_back(step);
  }
  return true;
}

const char* defaultSession() {
  return R"(# The default session: start both panels, play colour modes, a brightness ramp,
# bypass off and on, and regenerate the tables through the control interface.
init primary
init secondary
wait-tables primary
wait-tables secondary
brightness 0.25
echo content colour modes on the primary panel
frame primary 1 1          # sRGB content, Vivid intent
frame primary 1 256        # Nature
frame primary 1 258        # Cinema
frame primary 12 1         # DCI-P3 content, Cinema
frame primary 12 0 hdr     # HDR: no table
frame primary 1 259        # colours bypass
frame secondary 1 256
echo brightness ramp on the Nature table
brightness 0.30
needs-update primary
frame primary 1 256
brightness 0.55
frame primary 1 256
brightness 0.80
frame primary 1 256
brightness 1.0
frame primary 1 256
echo forced colour modes from the control services
hidl-set 518 0 2           # screen colour mode 2: table 2 whatever the content
frame primary 1 1
aidl-set 0 7               # mode 7 over AIDL
frame primary 1 1
hidl-set 518 0 100         # every post-blend block off
frame primary 1 1
hidl-set 518 0 101         # back to automatic
frame primary 1 1
echo bypass on, then off again
hidl-set 101 0
hidl-get 101
frame primary 1 1
hidl-set 101 1
hidl-get 101
frame primary 1 1
echo regenerate the tables (mode 104)
hidl-set 518 0 104
hidl-get 518 0 104
frame primary 1 1
hidl-set 518 0 101
frame primary 1 256
deinit secondary
deinit primary
)";
}

}  // namespace pctool
