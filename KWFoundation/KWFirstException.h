#pragma once

#include <exception>
#include <utility>

/// Lets work run to its end although some of it throws: keeps the first exception, to be rethrown
/// when all is done.
class KWFirstException {
  public:
    template <class Work>
    void during(const Work& work) noexcept {
        try {
            work();
        } catch (...) {
            keep(std::current_exception());
        }
    }

    /// Null for none.
    void keep(std::exception_ptr exception) noexcept {
        if (!_first)
            _first = std::move(exception);
    }

    std::exception_ptr take() noexcept { return std::exchange(_first, nullptr); }

    void rethrow() {
        if (_first) [[unlikely]]
            std::rethrow_exception(take());
    }

  private:
    std::exception_ptr _first;
};
