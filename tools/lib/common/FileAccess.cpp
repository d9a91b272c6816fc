#include "tools/lib/common/FileAccess.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace pctool {

bool checkInputFile(const std::string& path, std::string& error) {
  struct stat st;
  if (path.empty()) {
    error = "empty file name";
    return false;
  }
  if (stat(path.c_str(), &st) != 0) {
    error = errno == ENOENT ? "no such file" : "cannot open: " + std::string(std::strerror(errno));
    return false;
  }
  if (S_ISDIR(st.st_mode)) {
    error = "is a folder, not a file";
    return false;
  }
  if (!S_ISREG(st.st_mode)) {
    error = "not a regular file";
    return false;
  }
  if (access(path.c_str(), R_OK) != 0) {
    error = "cannot open: " + std::string(std::strerror(errno));
    return false;
  }
  return true;
}

bool openInputFile(const std::string& path, std::ifstream& in, uint64_t& bytes, std::string& error) {
  if (!checkInputFile(path, error)) return false;
  in.open(path, std::ios::binary | std::ios::ate);
  if (!in) {
    error = "cannot open: " + std::string(std::strerror(errno));
    return false;
  }
  bytes = static_cast<uint64_t>(in.tellg());
  in.seekg(0);
  return true;
}

bool readInputFile(const std::string& path, size_t limit, std::string& text, std::string& error) {
  text.clear();
  std::ifstream in;
  uint64_t bytes = 0;
  if (!openInputFile(path, in, bytes, error)) return false;
  char chunk[64 * 1024];
  while (in && text.size() <= limit) {
    in.read(chunk, static_cast<std::streamsize>(std::min(sizeof chunk, limit + 1 - text.size())));
    text.append(chunk, static_cast<size_t>(in.gcount()));
  }
  if (in.bad()) {
    error = "cannot read";
    return false;
  }
  return true;
}

bool writeWholeFile(const std::string& path, const std::string& bytes, std::string& error) {
  auto fail = [&](const char* what) {
    error = std::string(what) + ": " + std::strerror(errno);
    return false;
  };
  struct stat st;
  if (stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) {
    error = "cannot write: is a folder";
    return false;
  }
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd < 0) return fail("cannot create");
  const bool regular = fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  size_t done = 0;
  bool ok = true;
  while (ok && done < bytes.size()) {
    const ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      if (n == 0) errno = EIO;
      ok = false;
      break;
    }
    done += static_cast<size_t>(n);
  }
  const int writeErrno = errno;
  // A network or full file system may report the failure only here.
  if (close(fd) != 0 && ok) {
    ok = false;
  } else if (!ok) {
    errno = writeErrno;
  }
  if (!ok) {
    const int saved = errno;
    if (regular) unlink(path.c_str());
    errno = saved;
    return fail("cannot write");
  }
  return true;
}

bool pathExists(const std::string& path, std::string& error) {
  error.clear();
  struct stat st;
  if (!path.empty() && stat(path.c_str(), &st) == 0) return true;
  if (!path.empty() && errno != ENOENT && errno != ENOTDIR) error = std::strerror(errno);
  return false;
}

bool listFolder(const std::string& dir, std::vector<std::string>& names, std::string& error) {
  names.clear();
  std::error_code ec;
  for (std::filesystem::directory_iterator it(dir, ec), end; !ec && it != end; it.increment(ec))
    names.push_back(it->path().filename().string());
  if (ec) {
    error = "cannot list: " + ec.message();
    return false;
  }
  std::sort(names.begin(), names.end());
  return true;
}

bool makeFolders(const std::string& dir, std::string& error) {
  std::error_code ec;
  if (dir.empty() || std::filesystem::is_directory(dir, ec)) return true;
  std::filesystem::create_directories(dir, ec);
  if (ec) {
    error = "cannot create the folder: " + ec.message();
    return false;
  }
  return true;
}

std::string parentFolder(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  if (slash == std::string::npos) return "";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string fileName(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string lowerExtension(const std::string& path) {
  const std::string name = fileName(path);
  const size_t dot = name.find_last_of('.');
  std::string ext = dot == std::string::npos ? "" : name.substr(dot);
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ext;
}

}  // namespace pctool
