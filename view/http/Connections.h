// The connections of the server: a bounded number of threads, which those that wait for their clients give up to
// others.
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

// One for each open connection, by which it can be ended from outside. Connections are listed in the order in which
// they began to wait.
class Connections {
 public:
  class Entry {
   public:
    Entry(Connections& all, int socket);
    ~Entry();
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

    // Whether the connection waits for its client to make a request that is admitted, rather than being served.
    void setWaiting(bool waiting);

   private:
    Connections& all_;
    std::list<int>::iterator place_;  // among those that wait, or those that do not
    bool waiting_ = true;
  };

  // Ends the connection that has waited for its client the longest; where none waits, the next one that has been
  // served.
  void endLongestWaiting();
  // Ends all, those to come as well.
  void endAll();

 private:
  std::mutex mutex_;
  std::list<int> waiting_;
  std::list<int> answering_;
  bool is_wanted_ = false;  // somebody waits for a connection to end
  bool ended_ = false;
};

// Runs connections on a fixed number of threads. Where all are taken, a new connection takes the place of the one that
// has waited for its client the longest, so that clients that say nothing keep nobody out.
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
