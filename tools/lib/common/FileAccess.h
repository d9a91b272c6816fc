// How the workbench opens what it is given and writes what it makes. Inputs: a folder or a
// device node given as a file is refused by name before any reader looks at it (a reader would
// otherwise see a length of 2^63 or block on a pipe). Outputs: every write and the close are
// checked, so a full disk or a read-only target is reported, never a silent exit 0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace pctool {

// True when `path` is a regular file that can be opened for reading; else false with a reason
// without the path: "no such file", "is a folder, not a file", "not a regular file", ...
bool checkInputFile(const std::string& path, std::string& error);

// Opens an input file checked as above, at its start; `bytes` is its length. False with a reason
// without the path.
bool openInputFile(const std::string& path, std::ifstream& in, uint64_t& bytes, std::string& error);

// The text of an input file checked as above: at most `limit` bytes and one more, so the
// caller's reader can tell a file over its limit. False with a reason without the path.
bool readInputFile(const std::string& path, size_t limit, std::string& text, std::string& error);

// Writes `bytes` to `path`, created or truncated. False with a reason without the path
// ("cannot write: No space left on device"); a regular file left half-written is removed.
bool writeWholeFile(const std::string& path, const std::string& bytes, std::string& error);

// Whether anything is at `path`. False with `error` empty when nothing is there (a missing
// folder on the way included); false with a reason without the path when the path cannot be
// looked at ("File name too long", "Permission denied").
bool pathExists(const std::string& path, std::string& error);

// The names of the entries of folder `dir`, sorted. False with a reason without the path
// ("cannot list: Permission denied").
bool listFolder(const std::string& dir, std::vector<std::string>& names, std::string& error);

// Creates `dir` and its parents when missing. False with a reason without the path
// ("cannot create the folder: Not a directory").
bool makeFolders(const std::string& dir, std::string& error);

// The folder part of a path ("" for a bare name), the name after it, and the name's extension
// in lower case with its dot ("" without one).
std::string parentFolder(const std::string& path);
std::string fileName(const std::string& path);
std::string lowerExtension(const std::string& path);

}  // namespace pctool
