#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <type_traits>

/// What a walk through a tree has still to do: the first `inlineCapacity` values lie in the object
/// itself, so that ordinary trees cost no allocation.
template <class Value, std::size_t inlineCapacity>
class KWExpressionStack {
    static_assert(std::is_trivially_copyable_v<Value>);
    static_assert(std::is_trivially_default_constructible_v<Value>);

  public:
    KWExpressionStack() = default;
    KWExpressionStack(const KWExpressionStack&) = delete;
    KWExpressionStack& operator=(const KWExpressionStack&) = delete;

    bool isEmpty() const { return _size == 0; }
    void clear() { _size = 0; }

    void push(Value value) {
        if (_size == _capacity)
            grow();
        _values[_size++] = value;
    }

    /// Good until the next push.
    Value& top() { return _values[_size - 1]; }
    Value pop() { return _values[--_size]; }

  private:
    void grow() {
        std::unique_ptr<Value[]> larger(new Value[_capacity * 2]);
        std::copy_n(_values, _size, larger.get());
        _allocated = std::move(larger);
        _values = _allocated.get();
        _capacity *= 2;
    }

    std::array<Value, inlineCapacity> _inline; // values are written before they are read
    std::unique_ptr<Value[]> _allocated;
    Value* _values = _inline.data();
    std::size_t _size = 0;
    std::size_t _capacity = inlineCapacity;
};
