#include "tessarin/foundation/table_string.hpp"

#include "tessarin/foundation/interned_texts.hpp"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <random>
#include <string_view>
#include <utility>
#include <vector>

namespace nvf::detail {

namespace {

/// Two numbers that nobody outside the process knows. Whoever writes text cannot make names that collide without them.
struct Secret {
  std::uint64_t first;
  std::uint64_t second;

  static Secret make() {
    // Where the system has no random numbers to give, where it has put the process and the time are all there is.
    std::uint64_t a = reinterpret_cast<std::uintptr_t>(&make);
    auto b = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    try {
      std::random_device device;
      const auto draw = [&device] { return static_cast<std::uint64_t>(device()) << 32U ^ device(); };
      a = hash_combine(a, draw());
      b = hash_combine(b, draw());
    } catch (const std::exception&) {
      a = hash_combine(a, b);
    }
    return {hash_combine(1, a), hash_combine(2, b)};
  }
};

/// Both halves of the product of two numbers, one upon the other: each bit of the result depends on all bits of both.
std::uint64_t fold(std::uint64_t a, std::uint64_t b) noexcept {
#ifdef __SIZEOF_INT128__
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
#else
  const std::uint64_t half = 0xffffffffU;
  const std::uint64_t low = (a & half) * (b & half);
  const std::uint64_t left = (a >> 32U) * (b & half) + (low >> 32U);
  const std::uint64_t right = (a & half) * (b >> 32U) + (left & half);
  return ((right << 32U) | (low & half)) ^ ((a >> 32U) * (b >> 32U) + (left >> 32U) + (right >> 32U));
#endif
}

/// Mixes the text eight bytes at a time, with a short step, since most texts are short names. The length goes into the
/// seed, so that the padding of the last word is harmless.
template <class CharT>
std::size_t hashText(const Secret& secret, const CharT* text, std::size_t size) noexcept {
  std::size_t bytes = size * sizeof(CharT);
  const char* p = reinterpret_cast<const char*>(text);
  std::uint64_t seed = secret.first ^ bytes;
  const auto mix = [&seed, &secret](std::uint64_t word) {
    seed = fold(seed ^ word, secret.second | 1U) + secret.first;
  };
  std::uint64_t word = 0;
  for (; bytes >= sizeof word; bytes -= sizeof word, p += sizeof word) {
    std::memcpy(&word, p, sizeof word);
    mix(word);
  }
  if (bytes != 0) {
    word = 0;
    std::memcpy(&word, p, bytes);
    mix(word);
  }
  return static_cast<std::size_t>(hash_combine(0, seed));
}

/// Memory for entries, taken in blocks and given back never.
class Arena {
public:
  void* allocate(std::size_t bytes) {
    bytes = (bytes + alignment - 1) / alignment * alignment;
    if (bytes > blockSize_ / 8) return newBlock(bytes);
    if (bytes > left_) {
      next_ = newBlock(blockSize_);
      left_ = blockSize_;
      if (blockSize_ < largestBlock) blockSize_ *= 2;
    }
    void* result = next_;
    next_ += bytes;
    left_ -= bytes;
    return result;
  }
  [[nodiscard]] std::size_t size() const noexcept { return size_; }

private:
  static constexpr std::size_t alignment = alignof(TableEntry);
  // Small blocks first: a process that sees few texts touches little memory.
  static constexpr std::size_t smallestBlock = std::size_t{1} * 1024;
  static constexpr std::size_t largestBlock = std::size_t{16} * 1024;

  char* newBlock(std::size_t bytes) {
    blocks_.push_back(std::unique_ptr<char[]>(new char[bytes]));
    size_ += bytes;
    return blocks_.back().get();
  }

  std::vector<std::unique_ptr<char[]>> blocks_;
  char* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t blockSize_ = smallestBlock;
  std::size_t size_ = 0; // of all blocks
};

/// A part of the table with a lock of its own for writers. Readers probe an open-addressed array of atomic pointers: an
/// array only ever gains entries, and when it is replaced by a larger one the old one stays for those still reading it.
template <class CharT>
class Shard {
public:
  const TableEntry* intern(const CharT* text, std::size_t size, std::size_t hash) {
    const Slots* slots = slots_.load(std::memory_order_acquire);
    if (const TableEntry* found = slots->find(text, size, hash)) return found;
    return insert(text, size, hash);
  }

  void addTo(InternedTexts& sum) {
    const std::scoped_lock lock(mutex_);
    sum.count += count_;
    sum.bytes += arena_.size();
    for (const auto& slots : all_) sum.bytes += (slots->mask + 1) * sizeof slots->entries[0];
  }

  Shard() { use(std::make_unique<Slots>(64)); }

private:
  /// The slots that are looked at for a text. An entry that finds no room in them goes to `crowded_`: texts that were
  /// made to collide cost a logarithm each, and not a walk over all of them.
  static constexpr std::size_t maxProbes = 64;

  struct Slots {
    std::size_t mask;
    std::unique_ptr<std::atomic<const TableEntry*>[]> entries;

    explicit Slots(std::size_t capacity)
        : mask(capacity - 1), entries(std::make_unique<std::atomic<const TableEntry*>[]>(capacity)) {}

    const TableEntry* find(const CharT* text, std::size_t size, std::size_t hash) const noexcept {
      std::size_t i = hash & mask;
      for (std::size_t probe = 0; probe < maxProbes; ++probe, i = (i + 1) & mask) {
        const TableEntry* entry = entries[i].load(std::memory_order_acquire);
        if (entry == nullptr) return nullptr;
        if (entry->hash == hash && entry->size == size && std::memcmp(entry + 1, text, size * sizeof(CharT)) == 0) {
          return entry;
        }
      }
      return nullptr;
    }

    /// False where there is no room within reach.
    bool add(const TableEntry* entry) noexcept {
      std::size_t i = entry->hash & mask;
      for (std::size_t probe = 0; probe < maxProbes; ++probe, i = (i + 1) & mask) {
        if (entries[i].load(std::memory_order_relaxed) != nullptr) continue;
        entries[i].store(entry, std::memory_order_release);
        return true;
      }
      return false;
    }
  };

  using View = std::basic_string_view<CharT>;
  void place(Slots& slots, const TableEntry* entry) {
    if (!slots.add(entry)) crowded_.emplace(View(reinterpret_cast<const CharT*>(entry + 1), entry->size), entry);
  }

  const TableEntry* insert(const CharT* text, std::size_t size, std::size_t hash) {
    const std::scoped_lock lock(mutex_);
    Slots* slots = all_.back().get();
    if (const TableEntry* found = slots->find(text, size, hash)) return found;
    if (const auto found = crowded_.find(View(text, size)); found != crowded_.end()) return found->second;
    if (2 * (count_ + 1) > slots->mask + 1) slots = grow(*slots);
    void* memory = arena_.allocate(sizeof(TableEntry) + (size + 1) * sizeof(CharT));
    auto* entry = new (memory) TableEntry{hash, size};
    auto* chars = reinterpret_cast<CharT*>(entry + 1);
    std::memcpy(chars, text, size * sizeof(CharT));
    chars[size] = CharT();
    place(*slots, entry);
    ++count_;
    return entry;
  }

  /// The last array is the one that is in use.
  Slots* use(std::unique_ptr<Slots> slots) {
    all_.push_back(std::move(slots));
    slots_.store(all_.back().get(), std::memory_order_release);
    return all_.back().get();
  }

  /// Where memory ends on the way, the old array stays in use; what `crowded_` has got meanwhile does no harm.
  Slots* grow(const Slots& old) {
    auto larger = std::make_unique<Slots>(2 * (old.mask + 1));
    for (std::size_t i = 0; i <= old.mask; ++i) {
      if (const TableEntry* entry = old.entries[i].load(std::memory_order_relaxed)) place(*larger, entry);
    }
    return use(std::move(larger));
  }

  std::atomic<const Slots*> slots_ = nullptr;
  std::mutex mutex_;
  std::vector<std::unique_ptr<Slots>> all_;
  std::map<View, const TableEntry*> crowded_; // guarded by the lock
  std::size_t count_ = 0;
  Arena arena_;
};

template <class CharT>
class Table {
public:
  const TableEntry* intern(const CharT* text, std::size_t size) {
    const std::size_t hash = hashText(secret_, text, size);
    return shards_[hash >> (64 - shardBits)].intern(text, size, hash);
  }
  void addTo(InternedTexts& sum) {
    for (Shard<CharT>& shard : shards_) shard.addTo(sum);
  }

private:
  static constexpr unsigned shardBits = 6;
  const Secret secret_ = Secret::make();
  std::array<Shard<CharT>, std::size_t{1} << shardBits> shards_;
};

} // namespace

namespace {

template <class CharT>
Table<CharT>& table() {
  // Never destroyed: strings with static storage must stay valid to the last moment of the process.
  static auto& instance = *new Table<CharT>;
  return instance;
}

} // namespace

template <class CharT>
const TableEntry* intern(const CharT* text, std::size_t size) {
  return table<CharT>().intern(text, size);
}

template TESSARIN_EXPORT const TableEntry* intern(const char16_t*, std::size_t);
template TESSARIN_EXPORT const TableEntry* intern(const char*, std::size_t);

} // namespace nvf::detail

namespace nvf {

InternedTexts interned_texts() {
  InternedTexts sum;
  detail::table<char16_t>().addTo(sum);
  detail::table<char>().addTo(sum);
  return sum;
}

} // namespace nvf
