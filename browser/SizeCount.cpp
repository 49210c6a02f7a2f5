#include "browser/SizeCount.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <system_error>
#include <utility>

#include "browser/SizeWalk.h"
#include "platform/BackgroundThread.h"

namespace browser {
namespace {

constexpr int threads = 2;
constexpr std::size_t stock = 4;  // folders that lie open for a thread that has nothing to do

}  // namespace

/// An item is counted in parts: the item itself, and the folders below it that went to the other thread.
class SizeCount::Work {
 public:
  Work(platform::DriveTable drives, std::vector<std::string> items)
      : drives_(std::move(drives)), items_(std::move(items)), counted_{0, 0, items_.empty()} {}

  void run();  ///< each thread's
  void stop();
  CountedSize soFar() const;

 private:
  struct Part {
    std::size_t item = 0;
    OpenFolder folder;  ///< null: the item itself
  };
  struct Item {
    std::uint64_t bytes = 0;
    int parts = 1;  ///< that are not counted yet
  };

  std::optional<Part> takePart();
  std::uint64_t bytesOf(Part part);
  std::uint64_t bytesOfFolder(std::size_t item, OpenFolder folder);
  void give(std::size_t item, OpenFolder& folder);
  void add(std::size_t item, std::uint64_t bytes);

  const platform::DriveTable drives_;
  const std::vector<std::string> items_;
  std::stop_source source_;
  const platform::Stop stop_{source_.get_token()};

  mutable std::mutex mutex_;  // guards what follows
  std::condition_variable changed_;
  std::vector<Part> parts_;
  std::deque<Item> begun_;  // behind those that are counted
  std::size_t next_ = 0;    // item
  CountedSize counted_;
};

void SizeCount::Work::run() {
  while (std::optional<Part> part = takePart()) {
    const std::size_t item = part->item;
    add(item, bytesOf(std::move(*part)));
  }
}

void SizeCount::Work::stop() {
  source_.request_stop();
  const std::lock_guard lock(mutex_);
  changed_.notify_all();
}

CountedSize SizeCount::Work::soFar() const {
  const std::lock_guard lock(mutex_);
  return counted_;
}

/// Waits while there may yet be some; nullopt once there will be none.
std::optional<SizeCount::Work::Part> SizeCount::Work::takePart() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] {
    return stop_.requested() || !parts_.empty() || next_ < items_.size() || begun_.empty();
  });
  if (stop_.requested()) return std::nullopt;
  if (!parts_.empty()) {
    Part part = std::move(parts_.back());
    parts_.pop_back();
    return part;
  }
  if (next_ == items_.size()) return std::nullopt;
  begun_.emplace_back();
  return Part{next_++, OpenFolder(nullptr, closedir)};
}

std::uint64_t SizeCount::Work::bytesOf(Part part) {
  if (part.folder) return bytesOfFolder(part.item, std::move(part.folder));
  const std::optional<std::string> host = drives_.toHost(items_[part.item]);
  struct stat status {};
  if (!host || stat(host->c_str(), &status) != 0) return 0;
  if (S_ISREG(status.st_mode)) return static_cast<std::uint64_t>(status.st_size);
  return S_ISDIR(status.st_mode) ? bytesOfFolder(part.item, openFolder(AT_FDCWD, host->c_str())) : 0;
}

std::uint64_t SizeCount::Work::bytesOfFolder(std::size_t item, OpenFolder folder) {
  return sizeBelow(std::move(folder), stop_, [this, item](OpenFolder& below) { give(item, below); });
}

void SizeCount::Work::give(std::size_t item, OpenFolder& folder) {
  const std::lock_guard lock(mutex_);
  if (parts_.size() >= stock) return;
  parts_.push_back({item, std::move(folder)});
  ++begun_[item - counted_.items].parts;
  changed_.notify_one();
}

void SizeCount::Work::add(std::size_t item, std::uint64_t bytes) {
  const std::lock_guard lock(mutex_);
  Item& counted = begun_[item - counted_.items];
  counted.bytes += bytes;
  --counted.parts;
  for (; !begun_.empty() && begun_.front().parts == 0; begun_.pop_front()) {
    counted_.bytes += begun_.front().bytes;
    ++counted_.items;
  }
  if (!begun_.empty()) return;
  counted_.ended = counted_.items == items_.size();
  changed_.notify_all();
}

SizeCount::SizeCount(const platform::DriveTable& drives, std::vector<std::string> items)
    : work_(std::make_shared<Work>(drives, std::move(items))) {
  try {
    for (int i = 0; i < threads; ++i) platform::startInBackground([work = work_] { work->run(); });
  } catch (const std::system_error&) {
    // One thread does it as well; without any, nothing is ever counted.
  }
}

SizeCount::~SizeCount() { work_->stop(); }

CountedSize SizeCount::soFar() const { return work_->soFar(); }

}  // namespace browser
