// The one place where the plugin touches device files, the driver and the clock. On a device
// these are the plain calls; on a development machine the host layer roots paths under
// $PANELCORVANE_ROOT, emulates the display driver and scales pauses.
#pragma once

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#ifndef __ANDROID__
#include <pchost/host.h>
#endif

namespace postblend {
namespace devio {

#ifdef __ANDROID__
inline std::string path(const char* p) { return p; }
inline int open(const char* p, int flags, int mode = 0) { return ::open(p, flags, mode); }
inline FILE* fopen(const char* p, const char* mode) { return ::fopen(p, mode); }
inline int ioctl(int fd, unsigned long req, void* arg) { return ::ioctl(fd, req, arg); }
inline void sleepSeconds(unsigned s) { ::sleep(s); }
#else
inline std::string path(const char* p) { return pchost::mapPath(p); }
inline int open(const char* p, int flags, int mode = 0) { return pchost::openPath(p, flags, mode); }
inline FILE* fopen(const char* p, const char* mode) { return pchost::fopenPath(p, mode); }
inline int ioctl(int fd, unsigned long req, void* arg) { return pchost::ioctlDevice(fd, req, arg); }
inline void sleepSeconds(unsigned s) { pchost::sleepSeconds(s); }
#endif

}  // namespace devio
}  // namespace postblend
