#include "view/http/Connections.h"

#include <sys/socket.h>

#include <utility>

namespace vantorel::view {

namespace {

constexpr std::size_t kThreads = 16;
constexpr std::size_t kMaxTasks = 64;  // accepted connections that wait for a thread

}  // namespace

Connections::Entry::Entry(Connections& all, int socket) : all_(all) {
  const std::scoped_lock lock(all_.mutex_);
  place_ = all_.waiting_.insert(all_.waiting_.end(), socket);
  if (all_.ended_) {
    ::shutdown(socket, SHUT_RDWR);
  }
}

Connections::Entry::~Entry() {
  const std::scoped_lock lock(all_.mutex_);
  (waiting_ ? all_.waiting_ : all_.answering_).erase(place_);
}

void Connections::Entry::setWaiting(bool waiting) {
  const std::scoped_lock lock(all_.mutex_);
  if (waiting && std::exchange(all_.is_wanted_, false)) {
    ::shutdown(*place_, SHUT_RD);
  }
  std::list<int>& from = waiting_ ? all_.waiting_ : all_.answering_;
  std::list<int>& to = waiting ? all_.waiting_ : all_.answering_;
  to.splice(to.end(), from, place_);
  waiting_ = waiting;
}

void Connections::endLongestWaiting() {
  const std::scoped_lock lock(mutex_);
  if (waiting_.empty()) {
    is_wanted_ = true;
    return;
  }
  // Its thread will notice that the connection is closed and remove it from the list. Until then it goes to the end of
  // the list, so that another connection is chosen next time.
  ::shutdown(waiting_.front(), SHUT_RDWR);
  waiting_.splice(waiting_.end(), waiting_, waiting_.begin());
}

void Connections::endAll() {
  const std::scoped_lock lock(mutex_);
  ended_ = true;
  for (const std::list<int>* list : {&waiting_, &answering_}) {
    for (const int socket : *list) {
      ::shutdown(socket, SHUT_RDWR);
    }
  }
}

ConnectionThreads::ConnectionThreads(Connections& connections) : connections_(connections) {
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads_.emplace_back([this] { work(); });
  }
}

void ConnectionThreads::enqueue(std::function<void()> task) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return tasks_.size() < kMaxTasks || ended_; });
  tasks_.push_back(std::move(task));
  const bool all_taken = tasks_.size() > idle_;
  lock.unlock();
  if (all_taken) {
    connections_.endLongestWaiting();
  }
  changed_.notify_all();
}

void ConnectionThreads::shutdown() {
  connections_.endAll();
  {
    const std::scoped_lock lock(mutex_);
    ended_ = true;
  }
  changed_.notify_all();
  threads_.clear();
}

void ConnectionThreads::work() {
  std::unique_lock lock(mutex_);
  while (true) {
    ++idle_;
    changed_.wait(lock, [&] { return !tasks_.empty() || ended_; });
    --idle_;
    if (tasks_.empty()) {
      return;
    }
    const std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    const bool others_wait = tasks_.size() > idle_;
    lock.unlock();
    changed_.notify_all();
    if (others_wait) {
      connections_.endLongestWaiting();
    }
    task();
    lock.lock();
  }
}

}  // namespace vantorel::view
