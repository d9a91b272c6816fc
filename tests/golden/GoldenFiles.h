// The stored golden files under tests/golden/data/: text, '#' starts a comment line.
// With PC_GOLDEN_UPDATE=1 in the environment the test writes them anew instead of comparing.
#pragma once

#include <string>
#include <vector>

namespace golden {

bool updating();
std::string dataPath(const std::string& name);

// The non-comment lines of data file NAME; false when it cannot be read.
bool readDataLines(const std::string& name, std::vector<std::string>& lines);

// Writes data file NAME: HEADER as comment lines, then LINES; false when it cannot be written.
bool writeDataLines(const std::string& name, const std::vector<std::string>& header,
                    const std::vector<std::string>& lines);

}  // namespace golden
