// Open-addressing hash tables of unsigned integer keys, for membership tests only.
//
// Neither container can be iterated: results built with them follow the order of the input,
// never the order of the table. Both probe linearly from a Fibonacci hash in a power-of-two
// table kept at most half full.
//
// hash_set stores its keys by pages of 64: a slot holds a page number and a 64-bit word with one
// bit per key of that page. Node numbers are dense, so a page usually carries many keys and the
// table stays within a few bits per key, close to a plain bit vector and small enough for the
// caches, whatever the order in which the keys arrive; keys scattered far apart cost one slot
// each. Every key value is allowed, the all-ones key (NONE_ID for unsigned) among them.
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

// Slot arithmetic of a table of 2^bits slots.
class __hash_shape {
    static constexpr unsigned min_bits = 4;

public:
    // Smallest table that holds n entries at a load of at most one half.
    static unsigned bits_for(std::size_t n) noexcept
    {
        unsigned bits = min_bits;
        while ((std::size_t(1) << bits) < 2 * n) ++bits;
        return bits;
    }

    void reshape(unsigned bits) noexcept
    {
        bits_ = bits;
        mask_ = (std::uint64_t(1) << bits) - 1;
        shift_ = 64 - bits;
    }
    unsigned bits() const noexcept { return bits_; }
    std::size_t slots() const noexcept { return static_cast<std::size_t>(mask_ + 1); }
    bool full_after_one_more(std::size_t stored) const noexcept { return 2 * (stored + 1) > mask_ + 1; }
    std::size_t next(std::size_t i) const noexcept { return static_cast<std::size_t>((i + 1) & mask_); }
    std::size_t home(std::uint64_t key) const noexcept
    {
        return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15ull) >> shift_);
    }

    // Slot holding key, or the empty slot where it would go.
    template <class Key>
    std::size_t find_slot(Key const* keys, Key key, Key empty) const noexcept
    {
        std::size_t i = home(key);
        while (keys[i] != key && keys[i] != empty) i = next(i);
        return i;
    }
    template <class Slot, class Key>
    std::size_t find_slot(Slot const* slots, Key Slot::*field, Key key, Key empty) const noexcept
    {
        std::size_t i = home(key);
        while (slots[i].*field != key && slots[i].*field != empty) i = next(i);
        return i;
    }

private:
    // 64-bit fields: stores through a pointer to 32-bit keys can never alias them.
    std::uint64_t mask_ = 0;
    std::uint64_t shift_ = 0;
    unsigned bits_ = 0;
};

template <class Key>
class hash_set {
    static_assert(std::is_unsigned<Key>::value, "keys are unsigned integers");
    // No key has the all-ones page number, so it marks the empty slots.
    static constexpr Key no_page = std::numeric_limits<Key>::max();
    struct slot {
        Key page;
        std::uint64_t bits;
    };
    static Key page_of(Key key) noexcept { return key >> 6; }
    static std::uint64_t bit_of(Key key) noexcept { return std::uint64_t(1) << (key & 63); }

public:
    using key_type = Key;

    // Room for `expected` scattered keys before the first growth.
    explicit hash_set(std::size_t expected = 0) { __allocate(__hash_shape::bits_for(expected)); }

    // True when key was not yet present.
    bool insert(Key key)
    {
        Key page = page_of(key);
        std::size_t i = __find(page);
        if (slots_[i].page != page) {
            if (shape_.full_after_one_more(pages_)) {
                __rehash(shape_.bits() + 1);
                i = __find(page);
            }
            slots_[i] = slot{page, 0};
            ++pages_;
        }
        std::uint64_t bit = bit_of(key);
        if (slots_[i].bits & bit) return false;
        slots_[i].bits |= bit;
        ++keys_;
        return true;
    }

    bool contains(Key key) const noexcept
    {
        slot const& s = slots_[__find(page_of(key))];
        return s.page == page_of(key) && (s.bits & bit_of(key));
    }

    // True when key was present. A page left without keys leaves the table; the slots behind it
    // move back, so no tombstones remain.
    bool erase(Key key) noexcept
    {
        std::size_t i = __find(page_of(key));
        if (slots_[i].page != page_of(key) || !(slots_[i].bits & bit_of(key))) return false;
        --keys_;
        slots_[i].bits &= ~bit_of(key);
        if (slots_[i].bits == 0) __remove_slot(i);
        return true;
    }

    std::size_t size() const noexcept { return keys_; }
    bool empty() const noexcept { return keys_ == 0; }

    // Empties the set and keeps its table.
    void clear() noexcept
    {
        std::fill(slots_.get(), slots_.get() + shape_.slots(), slot{no_page, 0});
        keys_ = pages_ = 0;
    }

    // Grows the table so that n scattered keys fit without a further growth.
    void reserve(std::size_t n)
    {
        unsigned bits = __hash_shape::bits_for(n);
        if (bits > shape_.bits()) __rehash(bits);
    }

private:
    std::size_t __find(Key page) const noexcept { return shape_.find_slot(slots_.get(), &slot::page, page, no_page); }

    void __remove_slot(std::size_t i) noexcept
    {
        for (std::size_t j = shape_.next(i); slots_[j].page != no_page; j = shape_.next(j)) {
            std::size_t h = shape_.home(slots_[j].page);
            // The slot at j may fill the hole at i unless its home lies cyclically in (i, j].
            bool home_after_hole = i <= j ? (i < h && h <= j) : (i < h || h <= j);
            if (!home_after_hole) {
                slots_[i] = slots_[j];
                i = j;
            }
        }
        slots_[i] = slot{no_page, 0};
        --pages_;
    }

    void __allocate(unsigned bits)
    {
        std::size_t n = std::size_t(1) << bits;
        slots_.reset(new slot[n]);
        std::fill(slots_.get(), slots_.get() + n, slot{no_page, 0});
        shape_.reshape(bits);
    }

    void __rehash(unsigned bits)
    {
        std::unique_ptr<slot[]> old = std::move(slots_);
        std::size_t old_n = shape_.slots();
        __allocate(bits);
        for (std::size_t k = 0; k < old_n; ++k)
            if (old[k].page != no_page) slots_[__find(old[k].page)] = old[k];
    }

    std::unique_ptr<slot[]> slots_;
    __hash_shape shape_;
    std::size_t keys_ = 0;
    std::size_t pages_ = 0;
};

// Map from unsigned keys to values, without erase. The all-ones key marks empty slots and is
// kept apart with a flag.
template <class Key, class Value>
class hash_map {
    static_assert(std::is_unsigned<Key>::value, "keys are unsigned integers");
    static constexpr Key empty_key = std::numeric_limits<Key>::max();

public:
    explicit hash_map(std::size_t expected = 0) { __allocate(__hash_shape::bits_for(expected)); }

    // The value stored under key, or null.
    Value* find(Key key) noexcept
    {
        if (key == empty_key) return has_empty_key_ ? &empty_key_value_ : nullptr;
        std::size_t i = shape_.find_slot(keys_.get(), key, empty_key);
        return keys_[i] == key ? &values_[i] : nullptr;
    }
    Value const* find(Key key) const noexcept { return const_cast<hash_map*>(this)->find(key); }

    // Stores value under key, replacing what was there. True when key is new.
    bool insert_or_assign(Key key, Value const& value)
    {
        if (key == empty_key) {
            bool added = !has_empty_key_;
            has_empty_key_ = true;
            empty_key_value_ = value;
            return added;
        }
        std::size_t i = shape_.find_slot(keys_.get(), key, empty_key);
        if (keys_[i] == key) {
            values_[i] = value;
            return false;
        }
        if (shape_.full_after_one_more(stored_)) {
            __rehash(shape_.bits() + 1);
            i = shape_.find_slot(keys_.get(), key, empty_key);
        }
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
        std::fill(keys_.get(), keys_.get() + n, empty_key);
        shape_.reshape(bits);
    }

    void __rehash(unsigned bits)
    {
        std::unique_ptr<Key[]> old_keys = std::move(keys_);
        std::unique_ptr<Value[]> old_values = std::move(values_);
        std::size_t old_n = shape_.slots();
        __allocate(bits);
        for (std::size_t k = 0; k < old_n; ++k) {
            if (old_keys[k] == empty_key) continue;
            std::size_t i = shape_.find_slot(keys_.get(), old_keys[k], empty_key);
            keys_[i] = old_keys[k];
            values_[i] = std::move(old_values[k]);
        }
    }

    std::unique_ptr<Key[]> keys_;
    std::unique_ptr<Value[]> values_;
    __hash_shape shape_;
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
