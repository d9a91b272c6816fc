// An input stream over bytes in memory, so a reader written for files reads a buffer the same
// way (a fuzz target or a test hands it bytes, the device a file).
#pragma once

#include <cstddef>
#include <istream>
#include <streambuf>

namespace postblend {

class MemoryStream : private std::streambuf, public std::istream {
 public:
  MemoryStream(const void* data, size_t size) : std::istream(static_cast<std::streambuf*>(this)) {
    // The get area is only ever read from; streambuf merely wants non-const pointers.
    char* begin = const_cast<char*>(static_cast<const char*>(data));
    setg(begin, begin, begin + size);
  }
};

}  // namespace postblend
