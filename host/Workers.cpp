#include "Workers.h"

#include "Frames.h"
#include "HostError.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>

#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

// Pieces of work shared out to processes over sockets. Processes and not threads, since the
// settings of the library are a process's own; of one that dies, the piece it had is reported as
// failed.
namespace Lumivane::Host {
namespace {

constexpr int TickMilliseconds = 200;

bool sendAll(int socket, const std::string& text) {
  for (size_t done = 0; done < text.size();) {
    const ssize_t count = send(socket, text.data() + done, text.size() - done, MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    done += static_cast<size_t>(count);
  }
  return true;
}

// Appends what is there; false at the end.
bool receiveSome(int socket, std::string& text) {
  char buffer[4096];
  ssize_t count = 0;
  do {
    count = recv(socket, buffer, sizeof buffer, 0);
  } while (count < 0 && errno == EINTR);
  if (count <= 0) return false;
  text.append(buffer, static_cast<size_t>(count));
  return true;
}

// The life of a process: pieces come as numbers, results go back.
void serve(int socket, const SharedWork& shared) {
  std::string received;
  std::string message;
  while (true) {
    while (!takeMessage(received, message))
      if (!receiveSome(socket, received)) return;
    if (!sendAll(socket, framed(shared.work(std::stoul(message))))) return;
  }
}

std::string howItEnded(int status) {
  if (WIFSIGNALED(status)) return "its process ended by signal " + std::to_string(WTERMSIG(status));
  return "its process ended with status " + std::to_string(WEXITSTATUS(status));
}

class Pool {
 public:
  Pool(const std::vector<size_t>& thePieces, int processes, const SharedWork& theShared)
      : pieces(thePieces), shared(theShared) {
    const size_t useful = std::min(pieces.size(), static_cast<size_t>(std::max(processes, 1)));
    workers.resize(useful);
  }
  Pool(const Pool&) = delete;
  Pool& operator=(const Pool&) = delete;
  // Idle processes end at the end of their sockets, busy ones when they want to answer.
  ~Pool() {
    for (Worker& worker : workers) end(worker);
  }

  void run() {
    for (size_t i = 0; i < workers.size(); ++i) begin(i);
    while (busy()) {
      wait();
      shared.tick();
    }
  }

 private:
  struct Worker {
    pid_t process = -1;
    int socket = -1;
    bool hasPiece = false;
    size_t piece = 0;
    std::string received;
  };

  bool busy() const {
    return std::any_of(workers.begin(), workers.end(),
                       [](const Worker& worker) { return worker.hasPiece; });
  }

  void begin(size_t index) {
    if (next >= pieces.size()) return;
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0)
      throw HostError("a process", std::string("cannot be made: ") + std::strerror(errno));
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0) {
      close(sockets[0]);
      close(sockets[1]);
      throw HostError("a process", std::string("cannot be made: ") + std::strerror(errno));
    }
    if (child == 0) {
      close(sockets[0]);
      for (const Worker& other : workers)
        if (other.socket >= 0) close(other.socket);
      become(static_cast<int>(index), sockets[1], parent);
    }
    close(sockets[1]);
    workers[index] = {child, sockets[0], false, 0, ""};
    hand(workers[index]);
  }

  [[noreturn]] void become(int index, int socket, pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) _exit(1);  // it ended before it could be signalled
    int status = 0;
    try {
      shared.start(index);
      serve(socket, shared);
    } catch (...) {
      status = 1;
    }
    _exit(status);  // what the parent has registered for its own end is not ours
  }

  void hand(Worker& worker) {
    worker.hasPiece = next < pieces.size();
    if (!worker.hasPiece) return;
    worker.piece = pieces[next++];
    sendAll(worker.socket, framed(std::to_string(worker.piece)));  // a failure shows as its end
  }

  static int end(Worker& worker) {
    if (worker.process < 0) return 0;
    close(worker.socket);
    int status = 0;
    while (waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {
    }
    worker = Worker();
    return status;
  }

  void wait() {
    std::vector<pollfd> waiting;
    for (const Worker& worker : workers)
      waiting.push_back({worker.hasPiece ? worker.socket : -1, POLLIN, 0});
    if (poll(waiting.data(), waiting.size(), TickMilliseconds) <= 0) return;
    for (size_t i = 0; i < workers.size(); ++i)
      if (waiting[i].revents != 0) listen(i);
  }

  void listen(size_t index) {
    Worker& worker = workers[index];
    if (!receiveSome(worker.socket, worker.received)) {
      const size_t piece = worker.piece;
      const int status = end(worker);
      shared.died(piece, howItEnded(status));
      begin(index);
      return;
    }
    std::string result;
    try {
      if (!takeMessage(worker.received, result)) return;
    } catch (const FrameError&) {  // it cannot be understood any more
      const size_t piece = worker.piece;
      kill(worker.process, SIGKILL);
      end(worker);
      shared.died(piece, "its process gave no row");
      begin(index);
      return;
    }
    shared.done(worker.piece, result);
    hand(worker);
  }

  const std::vector<size_t>& pieces;
  const SharedWork& shared;
  std::vector<Worker> workers;
  size_t next = 0;
};

}  // namespace

void shareOut(const std::vector<size_t>& pieces, int processes, const SharedWork& shared) {
  Pool(pieces, processes, shared).run();
}

}  // namespace Lumivane::Host
