#pragma once

#include <functional>
#include <stop_token>
#include <vector>

#include "platform/Stop.h"

namespace platform {

/// The one gate. From the click to its last line a job holds it; while it is held no handler acts except the
/// job's own Cancel. What asks for a listing is remembered and done once afterwards; closing, Exit and the
/// end signals ask the job to stop, and then the program ends. Belongs to the thread of the windows.
class Busy {
 public:
  /// What a remembered deed covers: the widest wins, of two alike the later one.
  enum class Width { Relist, OpenFolder };

  /// Whoever shows that the gate is shut. Told when the outermost holder comes and goes.
  class Watcher {
   public:
    virtual ~Watcher() = default;
    virtual void began() {}
    virtual void becameSlow() {}  ///< the job lasts so long that what does nothing has to look so
    virtual void stopWanted() {}
    virtual void ended() {}  ///< told in the reverse order
  };

  /// Holds the gate. A job may run another as its step: then the outermost holder counts. On the last release
  /// the remembered deed is done, unless the program is to end.
  class Scope {
   public:
    explicit Scope(Busy& owner) : owner_(owner) { owner_.enter(); }
    ~Scope() { owner_.leave(); }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    Busy& owner_;
  };

  Busy() = default;
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;

  bool held() const { return depth_ > 0; }

  Stop stop() const { return Stop(source_.get_token()); }  ///< of the job that runs
  bool stopRequested() const { return stop().requested(); }
  void requestStop();  ///< nothing while no job runs
  /// The job stops and the program ends. With no job running only noted.
  void requestEnd();
  bool endRequested() const { return endRequested_; }

  /// Does it now; while the gate is held, once afterwards.
  void whenFree(Width width, std::function<void()> deed);

  void becomeSlow();
  bool slow() const { return slow_; }

  void watch(Watcher& watcher) { watchers_.push_back(&watcher); }  ///< until it is unwatched
  void unwatch(Watcher& watcher) { std::erase(watchers_, &watcher); }

 private:
  void enter();
  void leave();

  int depth_ = 0;
  bool endRequested_ = false;
  std::stop_source source_;
  Width width_ = Width::Relist;
  std::function<void()> deed_;
  bool slow_ = false;
  std::vector<Watcher*> watchers_;
};

}  // namespace platform
