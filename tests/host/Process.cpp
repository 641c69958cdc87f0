#include "host/Process.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Lumivane::Test {
namespace {

[[noreturn]] void become(const std::vector<std::string>& command, const Environment& environment) {
  for (const auto& [name, value] : environment) {
    if (value)
      setenv(name.c_str(), value->c_str(), 1);
    else
      unsetenv(name.c_str());
  }
  // A shell's background jobs have them ignored, and so would the program.
  for (const int ending : {SIGINT, SIGTERM, SIGHUP}) std::signal(ending, SIG_DFL);
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const std::string& argument : command)
    arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments[0], arguments.data());
  _exit(127);
}

struct Channel {
  int readEnd = -1;
  int writeEnd = -1;
};

Channel makePipe() {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  return {ends[0], ends[1]};
}

Channel makeTerminal() {
  Channel channel;
  if (openpty(&channel.readEnd, &channel.writeEnd, nullptr, nullptr, nullptr) != 0)
    throw std::runtime_error("no terminal");
  return channel;
}

// False at the end. A terminal whose program has ended gives an error instead of an end.
bool readSome(int descriptor, std::string& text) {
  char buffer[4096];
  const ssize_t count = read(descriptor, buffer, sizeof buffer);
  if (count < 0 && errno == EINTR) return true;
  if (count <= 0) return false;
  text.append(buffer, static_cast<size_t>(count));
  return true;
}

void readBoth(int first, std::string& firstText, int second, std::string& secondText) {
  pollfd waiting[] = {{first, POLLIN, 0}, {second, POLLIN, 0}};
  std::string* const texts[] = {&firstText, &secondText};
  for (int open = 2; open > 0;) {
    if (poll(waiting, 2, -1) < 0) continue;
    for (int i = 0; i < 2; ++i) {
      if (waiting[i].fd < 0 || waiting[i].revents == 0) continue;
      if (readSome(waiting[i].fd, *texts[i])) continue;
      waiting[i].fd = -1;
      --open;
    }
  }
}

}  // namespace

namespace {

struct Running {
  pid_t process = -1;
  int out = -1;
  int err = -1;
};

Running start(const std::vector<std::string>& command, const Environment& environment,
              bool errorIsTerminal) {
  const Channel out = makePipe();
  const Channel err = errorIsTerminal ? makeTerminal() : makePipe();
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) {
    dup2(out.writeEnd, STDOUT_FILENO);
    dup2(err.writeEnd, STDERR_FILENO);
    for (const int end : {out.readEnd, out.writeEnd, err.readEnd, err.writeEnd}) close(end);
    become(command, environment);
  }
  close(out.writeEnd);
  close(err.writeEnd);
  return {child, out.readEnd, err.readEnd};
}

void finish(const Running& running, Result& result) {
  readBoth(running.out, result.out, running.err, result.err);
  close(running.out);
  close(running.err);
  int status = 0;
  waitpid(running.process, &status, 0);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  result.bySignal = WIFSIGNALED(status);
}

}  // namespace

Result runProcess(const std::vector<std::string>& command, const Environment& environment,
                  bool errorIsTerminal) {
  Result result;
  finish(start(command, environment, errorIsTerminal), result);
  return result;
}

Result signalProcess(const std::vector<std::string>& command, const std::string& sign, int signal) {
  const Running running = start(command, {{"DISPLAY", {}}}, true);
  Result result;
  while (result.err.find(sign) == std::string::npos && readSome(running.err, result.err)) {
  }
  kill(running.process, signal);
  finish(running, result);
  return result;
}

Result runUntil(const std::vector<std::string>& command, const Environment& environment, int signal,
                const std::function<bool()>& holds) {
  const Running running = start(command, environment, false);
  const auto hasEnded = [&running] {
    siginfo_t info = {};
    waitid(P_PID, static_cast<id_t>(running.process), &info, WEXITED | WNOHANG | WNOWAIT);
    return info.si_pid != 0;
  };
  while (!hasEnded() && !holds()) usleep(1000);
  kill(running.process, signal);
  Result result;
  finish(running, result);
  return result;
}

VirtualDisplay::VirtualDisplay() {
  const Channel number = makePipe();
  process = fork();
  if (process == 0) {
    close(number.readEnd);
    const int nowhere = open("/dev/null", O_WRONLY);
    dup2(nowhere, STDERR_FILENO);
    become({"Xvfb", "-displayfd", std::to_string(number.writeEnd), "-screen", "0", "1280x1024x24",
            "-nolisten", "tcp", "-noreset"},
           {});
  }
  close(number.writeEnd);
  std::string text;
  while (text.find('\n') == std::string::npos && readSome(number.readEnd, text)) {
  }
  close(number.readEnd);
  if (text.empty()) {
    waitpid(process, nullptr, 0);
    throw std::runtime_error("no virtual display: is Xvfb installed?");
  }
  displayName = ":" + text.substr(0, text.find('\n'));
}

VirtualDisplay::~VirtualDisplay() {
  kill(process, SIGTERM);
  waitpid(process, nullptr, 0);
}

}  // namespace Lumivane::Test
