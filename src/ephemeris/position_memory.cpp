#include "ephemeris/position_memory.h"

namespace ephemeris {

PositionMemory::Entry* PositionMemory::Find(const Key& key) {
  const std::size_t count = entries_.size();
  for (std::size_t step = 0, i = next_; step < count; ++step, ++i) {
    if (i >= count) i = 0;
    if (mjds_[i] == key.mjd && entries_[i].key == key) {
      next_ = i + 1;
      return &entries_[i];
    }
  }
  return nullptr;
}

PositionMemory::Entry* PositionMemory::Add(const Entry& entry) {
  std::size_t slot = entries_.size();
  if (slot < kCapacity) {
    entries_.push_back(entry);
  } else {
    slot = oldest_;
    oldest_ = (oldest_ + 1) % kCapacity;
    entries_[slot] = entry;
  }
  mjds_[slot] = entry.key.mjd;
  next_ = slot + 1;
  return &entries_[slot];
}

}  // namespace ephemeris
