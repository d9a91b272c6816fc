// What a reader of outside input found wrong: the first problem, where it sits and what it is.
// Readers keep going after a problem where their callers want the lenient result, so only the
// first one noted is kept.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

namespace postblend {

template <class Problem>
struct ReadDiagnosis {
  Problem problem = Problem::None;
  uint32_t line = 0;    // 1-based line of a text input; 0 for binary input or the input as a whole
  std::string message;  // one line naming the place and the fault

  bool ok() const { return problem == Problem::None; }
  // Keeps the first problem only.
  void note(Problem p, uint32_t where, std::string text) {
    if (!ok()) return;
    problem = p;
    line = where;
    message = std::move(text);
  }
};

}  // namespace postblend
