// Logcat threadtime lines: "MM-DD HH:MM:SS.mmm  PID  TID L TAG: TEXT".
#include <android/log.h>
#include <pchost/host.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <string>

#include "Format.h"

namespace {

std::mutex gLogMutex;
pchost::LogSink gSink;
bool gEcho = true;

char priorityLetter(int prio) {
  switch (prio) {
    case ANDROID_LOG_VERBOSE: return 'V';
    case ANDROID_LOG_DEBUG: return 'D';
    case ANDROID_LOG_INFO: return 'I';
    case ANDROID_LOG_WARN: return 'W';
    case ANDROID_LOG_ERROR: return 'E';
    case ANDROID_LOG_FATAL: return 'F';
    default: return prio < ANDROID_LOG_VERBOSE ? 'V' : 'F';
  }
}

void emit(int prio, const char* tag, std::string text) {
  while (!text.empty() && text.back() == '\n') text.pop_back();
  if (tag == nullptr) tag = "";
  std::lock_guard<std::mutex> lock(gLogMutex);
  if (gSink) gSink(prio, tag, text.c_str());
  if (!gEcho) return;

  timespec ts{};
  clock_gettime(CLOCK_REALTIME, &ts);
  tm local{};
  localtime_r(&ts.tv_sec, &local);
  char stamp[32];
  strftime(stamp, sizeof(stamp), "%m-%d %H:%M:%S", &local);
  char head[96];
  snprintf(head, sizeof(head), "%s.%03ld %5d %5ld %c ", stamp, ts.tv_nsec / 1000000L,
           static_cast<int>(getpid()), static_cast<long>(syscall(SYS_gettid)),
           priorityLetter(prio));

  const char* file = getenv("PANELCORVANE_LOG");
  FILE* out = stderr;
  if (file != nullptr && *file != '\0') out = fopen(file, "a");
  if (out == nullptr) out = stderr;
  fprintf(out, "%s%s: %s\n", head, tag, text.c_str());
  if (out != stderr) fclose(out);
}

}  // namespace

extern "C" int __android_log_print(int prio, const char* tag, const char* fmt, ...) {
  va_list ap;
  va_start(ap, fmt);
  std::string text = pchost::vformat(fmt, ap);
  va_end(ap);
  const int n = static_cast<int>(text.size());
  emit(prio, tag, std::move(text));
  return n;
}

extern "C" int __android_log_write(int prio, const char* tag, const char* text) {
  emit(prio, tag, text ? text : "");
  return 1;
}

namespace pchost {

void setLogSink(LogSink sink) {
  std::lock_guard<std::mutex> lock(gLogMutex);
  gSink = std::move(sink);
}

void setLogEcho(bool on) {
  std::lock_guard<std::mutex> lock(gLogMutex);
  gEcho = on;
}

}  // namespace pchost
