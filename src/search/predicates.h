// Node filters for the closest-node searches.
#pragma once

#include <functional>

namespace qv7 {

// Accepts every node.
template <class T>
struct yes_predicate {
    bool operator()(T const&) const noexcept { return true; }
};

// Binds the second argument of a binary predicate: binder2nd<std::not_equal_to<unsigned>>
// accepts every node but one.
template <class Op, class Arg = unsigned>
class binder2nd {
public:
    binder2nd(Op const& op, Arg const& value) : op_(op), value_(value) {}
    bool operator()(Arg const& x) const { return op_(x, value_); }

private:
    Op op_;
    Arg value_;
};

}  // namespace qv7
