#include "ephemeris/position_memory.h"

#include <bit>

namespace ephemeris {

PositionMemory::PositionMemory() { heads_.fill(kNone); }

std::size_t PositionMemory::BucketOf(double mjd) {
  // Multiplicative hashing: the highest bits of the product depend on all bits of the instant.
  return static_cast<std::size_t>((std::bit_cast<std::uint64_t>(mjd) * 0x9E3779B97F4A7C15u) >> 56);
}

PositionMemory::Entry* PositionMemory::Find(const Key& key) {
  for (Slot slot = heads_[BucketOf(key.mjd)]; slot != kNone; slot = following_[slot]) {
    if (entries_[slot].key == key) return &entries_[slot];
  }
  return nullptr;
}

void PositionMemory::Unlink(std::size_t slot) {
  Slot* link = &heads_[BucketOf(entries_[slot].key.mjd)];
  while (*link != slot) link = &following_[*link];
  *link = following_[slot];
}

void PositionMemory::Add(const Entry& entry) {
  std::size_t slot = entries_.size();
  if (slot < kCapacity) {
    if (slot == 0) entries_.reserve(kCapacity);
    entries_.push_back(entry);
  } else {
    slot = oldest_;
    oldest_ = (oldest_ + 1) % kCapacity;
    Unlink(slot);
    entries_[slot] = entry;
  }
  Slot& head = heads_[BucketOf(entry.key.mjd)];
  following_[slot] = head;
  head = static_cast<Slot>(slot);
}

}  // namespace ephemeris
