#pragma once

namespace platform {

/// True while a tool runs: timers, sockets and handlers ask before they act.
class ToolRunning {
 public:
  bool active() const { return depth_ > 0; }
  class Scope {
   public:
    explicit Scope(ToolRunning& owner) : owner_(owner) { ++owner_.depth_; }
    ~Scope() { --owner_.depth_; }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    ToolRunning& owner_;
  };

 private:
  int depth_ = 0;
};

}  // namespace platform
