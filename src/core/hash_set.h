// Open-addressing hash set and map of unsigned integer keys, for membership tests only.
//
// Neither container can be iterated: results built with them follow the order of the input,
// never the order of the table. Both probe linearly in a power-of-two table kept at most half
// full. The home slot keeps runs of 16 consecutive keys together in one cache line and scatters
// the runs by a Fibonacci hash, so node numbers seen close together stay close in memory while
// strided keys do not pile up. Every key value is allowed: the all-ones key (NONE_ID for
// unsigned) marks empty slots and is tracked by a flag of its own.
//
// The tables are allocated with operator new and may throw std::bad_alloc.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <type_traits>

namespace qv7 {

// Slot arithmetic shared by hash_set and hash_map.
template <class Key>
struct __hash_probe {
    static_assert(std::is_unsigned<Key>::value, "keys are unsigned integers");
    static constexpr Key empty_key = std::numeric_limits<Key>::max();
    static constexpr unsigned min_bits = 5;
    static constexpr unsigned run_bits = 4;

    static std::size_t home(Key key, unsigned bits) noexcept
    {
        std::uint64_t run = static_cast<std::uint64_t>(key) >> run_bits;
        std::uint64_t scattered = (run * 0x9E3779B97F4A7C15ull) >> (64 - (bits - run_bits));
        return static_cast<std::size_t>((scattered << run_bits) | (key & ((1u << run_bits) - 1)));
    }
    // Smallest table that holds n keys at a load of at most one half.
    static unsigned bits_for(std::size_t n) noexcept
    {
        unsigned bits = min_bits;
        while ((std::size_t(1) << bits) < 2 * n) ++bits;
        return bits;
    }
};

template <class Key>
class hash_set {
    using probe = __hash_probe<Key>;

public:
    using key_type = Key;

    // Room for `expected` keys before the first growth.
    explicit hash_set(std::size_t expected = 0) { __allocate(probe::bits_for(expected)); }

    // True when key was not yet present.
    bool insert(Key key)
    {
        if (key == probe::empty_key) {
            bool added = !has_empty_key_;
            has_empty_key_ = true;
            return added;
        }
        std::size_t mask = (std::size_t(1) << bits_) - 1;
        for (std::size_t i = probe::home(key, bits_);; i = (i + 1) & mask) {
            if (slots_[i] == key) return false;
            if (slots_[i] == probe::empty_key) {
                if (2 * (stored_ + 1) > mask + 1) {
                    __rehash(bits_ + 1);
                    return insert(key);
                }
                slots_[i] = key;
                ++stored_;
                return true;
            }
        }
    }

    bool contains(Key key) const noexcept
    {
        if (key == probe::empty_key) return has_empty_key_;
        std::size_t mask = (std::size_t(1) << bits_) - 1;
        for (std::size_t i = probe::home(key, bits_);; i = (i + 1) & mask) {
            if (slots_[i] == key) return true;
            if (slots_[i] == probe::empty_key) return false;
        }
    }

    // True when key was present. Later keys of its probe run move back, so no tombstones remain.
    bool erase(Key key) noexcept
    {
        if (key == probe::empty_key) {
            bool had = has_empty_key_;
            has_empty_key_ = false;
            return had;
        }
        std::size_t mask = (std::size_t(1) << bits_) - 1;
        std::size_t i = probe::home(key, bits_);
        while (slots_[i] != key) {
            if (slots_[i] == probe::empty_key) return false;
            i = (i + 1) & mask;
        }
        for (std::size_t j = (i + 1) & mask; slots_[j] != probe::empty_key; j = (j + 1) & mask) {
            std::size_t h = probe::home(slots_[j], bits_);
            // The key at j may fill the hole at i unless its home lies cyclically in (i, j].
            bool home_after_hole = i <= j ? (i < h && h <= j) : (i < h || h <= j);
            if (!home_after_hole) {
                slots_[i] = slots_[j];
                i = j;
            }
        }
        slots_[i] = probe::empty_key;
        --stored_;
        return true;
    }

    std::size_t size() const noexcept { return stored_ + (has_empty_key_ ? 1 : 0); }
    bool empty() const noexcept { return size() == 0; }

    // Empties the set and keeps its table.
    void clear() noexcept
    {
        std::fill(slots_.get(), slots_.get() + (std::size_t(1) << bits_), probe::empty_key);
        stored_ = 0;
        has_empty_key_ = false;
    }

    // Grows the table so that n keys fit without a further growth.
    void reserve(std::size_t n)
    {
        unsigned bits = probe::bits_for(n);
        if (bits > bits_) __rehash(bits);
    }

private:
    void __allocate(unsigned bits)
    {
        std::size_t n = std::size_t(1) << bits;
        slots_.reset(new Key[n]);
        std::fill(slots_.get(), slots_.get() + n, probe::empty_key);
        bits_ = bits;
    }

    void __rehash(unsigned bits)
    {
        std::unique_ptr<Key[]> old = std::move(slots_);
        std::size_t old_n = std::size_t(1) << bits_;
        __allocate(bits);
        std::size_t mask = (std::size_t(1) << bits_) - 1;
        for (std::size_t k = 0; k < old_n; ++k) {
            Key key = old[k];
            if (key == probe::empty_key) continue;
            std::size_t i = probe::home(key, bits_);
            while (slots_[i] != probe::empty_key) i = (i + 1) & mask;
            slots_[i] = key;
        }
    }

    std::unique_ptr<Key[]> slots_;
    unsigned bits_ = 0;
    std::size_t stored_ = 0;  // keys in slots_, the all-ones key aside
    bool has_empty_key_ = false;
};

// Map from unsigned keys to values, same table scheme as hash_set, without erase.
template <class Key, class Value>
class hash_map {
    using probe = __hash_probe<Key>;

public:
    explicit hash_map(std::size_t expected = 0) { __allocate(probe::bits_for(expected)); }

    // The value stored under key, or null.
    Value* find(Key key) noexcept
    {
        if (key == probe::empty_key) return has_empty_key_ ? &empty_key_value_ : nullptr;
        std::size_t mask = (std::size_t(1) << bits_) - 1;
        for (std::size_t i = probe::home(key, bits_);; i = (i + 1) & mask) {
            if (keys_[i] == key) return &values_[i];
            if (keys_[i] == probe::empty_key) return nullptr;
        }
    }
    Value const* find(Key key) const noexcept { return const_cast<hash_map*>(this)->find(key); }

    // Stores value under key, replacing what was there. True when key is new.
    bool insert_or_assign(Key key, Value const& value)
    {
        if (Value* slot = find(key)) {
            *slot = value;
            return false;
        }
        if (key == probe::empty_key) {
            has_empty_key_ = true;
            empty_key_value_ = value;
            return true;
        }
        std::size_t mask = (std::size_t(1) << bits_) - 1;
        if (2 * (stored_ + 1) > mask + 1) {
            __rehash(bits_ + 1);
            mask = (std::size_t(1) << bits_) - 1;
        }
        std::size_t i = probe::home(key, bits_);
        while (keys_[i] != probe::empty_key) i = (i + 1) & mask;
        keys_[i] = key;
        values_[i] = value;
        ++stored_;
        return true;
    }

    std::size_t size() const noexcept { return stored_ + (has_empty_key_ ? 1 : 0); }

private:
    void __allocate(unsigned bits)
    {
        std::size_t n = std::size_t(1) << bits;
        keys_.reset(new Key[n]);
        values_.reset(new Value[n]);
        std::fill(keys_.get(), keys_.get() + n, probe::empty_key);
        bits_ = bits;
    }

    void __rehash(unsigned bits)
    {
        std::unique_ptr<Key[]> old_keys = std::move(keys_);
        std::unique_ptr<Value[]> old_values = std::move(values_);
        std::size_t old_n = std::size_t(1) << bits_;
        __allocate(bits);
        std::size_t mask = (std::size_t(1) << bits_) - 1;
        for (std::size_t k = 0; k < old_n; ++k) {
            if (old_keys[k] == probe::empty_key) continue;
            std::size_t i = probe::home(old_keys[k], bits_);
            while (keys_[i] != probe::empty_key) i = (i + 1) & mask;
            keys_[i] = old_keys[k];
            values_[i] = std::move(old_values[k]);
        }
    }

    std::unique_ptr<Key[]> keys_;
    std::unique_ptr<Value[]> values_;
    unsigned bits_ = 0;
    std::size_t stored_ = 0;
    bool has_empty_key_ = false;
    Value empty_key_value_{};
};

// Output iterator that inserts every value assigned through it into a set.
template <class Set>
class hash_insert_iterator {
public:
    using iterator_category = std::output_iterator_tag;
    using value_type = void;
    using difference_type = std::ptrdiff_t;
    using pointer = void;
    using reference = void;

    explicit hash_insert_iterator(Set& set) noexcept : set_(&set) {}
    hash_insert_iterator& operator=(typename Set::key_type const& key)
    {
        set_->insert(key);
        return *this;
    }
    hash_insert_iterator& operator*() noexcept { return *this; }
    hash_insert_iterator& operator++() noexcept { return *this; }
    hash_insert_iterator& operator++(int) noexcept { return *this; }

private:
    Set* set_;
};

template <class Set>
hash_insert_iterator<Set> hash_inserter(Set& set) noexcept
{
    return hash_insert_iterator<Set>(set);
}

}  // namespace qv7
