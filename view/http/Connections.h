// The server's connections: they share a bounded number of threads, and idle connections make way for new ones.
#pragma once

#include <httplib.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

namespace vantorel::view {

// A list of the open connections, through which other threads can end them. Idle connections are in the order in which
// they began to wait.
class Connections {
 public:
  class Entry {
   public:
    Entry(Connections& all, int socket);
    ~Entry();
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

    // `waiting`: the connection waits for an admitted request from its client, rather than being served.
    void setWaiting(bool waiting);

   private:
    Connections& all_;
    std::list<int>::iterator place_;  // in the list of waiting connections or in that of the others
    bool waiting_ = true;
  };

  // Ends the connection that has waited for its client the longest or, if none is waiting, the next one to finish a
  // request.
  void endLongestWaiting();
  // Ends all connections, including future ones.
  void endAll();

 private:
  std::mutex mutex_;
  std::list<int> waiting_;
  std::list<int> answering_;
  bool is_wanted_ = false;  // a new connection needs one to end
  bool ended_ = false;
};

// Runs connections on a fixed number of threads. If all are in use, a new connection replaces the one that has waited
// for its client the longest, so that silent clients cannot block the server.
class ConnectionThreads : public httplib::TaskQueue {
 public:
  explicit ConnectionThreads(Connections& connections);
  ~ConnectionThreads() override = default;

  void enqueue(std::function<void()> task) override;
  void shutdown() override;

 private:
  void work();

  Connections& connections_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_;
  std::size_t idle_ = 0;
  bool ended_ = false;
  std::vector<std::jthread> threads_;
};

}  // namespace vantorel::view
