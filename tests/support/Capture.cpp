#include "support/Capture.h"

#include <cstdio>
#include <iostream>
#include <stdexcept>

#include <unistd.h>

namespace Lumivane::Test {
namespace {

class Redirection {
 public:
  Redirection(std::FILE* stream, int descriptor)
      : stream_(stream), descriptor_(descriptor), file_(std::tmpfile()) {
    if (file_ == nullptr) throw std::runtime_error("no temporary file for captured output");
    flush();
    saved_ = dup(descriptor_);
    dup2(fileno(file_), descriptor_);
  }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;
  ~Redirection() {
    restore();
    std::fclose(file_);
  }

  std::string text() {
    restore();
    std::string result;
    std::rewind(file_);
    char buffer[4096];
    for (size_t n = 0; (n = std::fread(buffer, 1, sizeof buffer, file_)) > 0;)
      result.append(buffer, n);
    return result;
  }

 private:
  void flush() {
    std::cout.flush();
    std::cerr.flush();
    std::fflush(stream_);
  }
  void restore() {
    if (saved_ < 0) return;
    flush();
    dup2(saved_, descriptor_);
    close(saved_);
    saved_ = -1;
  }

  std::FILE* stream_;
  int descriptor_;
  std::FILE* file_;
  int saved_ = -1;
};

std::string captured(std::FILE* stream, int descriptor, const std::function<void()>& work) {
  Redirection redirection(stream, descriptor);
  work();
  return redirection.text();
}

}  // namespace

std::string capturedStdout(const std::function<void()>& work) {
  return captured(stdout, STDOUT_FILENO, work);
}

std::string capturedStderr(const std::function<void()>& work) {
  return captured(stderr, STDERR_FILENO, work);
}

}  // namespace Lumivane::Test
