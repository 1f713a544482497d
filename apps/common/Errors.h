#pragma once

#include <stdexcept>

/// Arguments that make no sense together, or for this document.
class UseError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A document that reads well but cannot do what was asked.
class DataError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// Whoever read our output has gone away. No failure: it has all it wanted.
class BrokenPipe : public std::exception {
  public:
    const char* what() const noexcept override { return "broken pipe"; }
};
