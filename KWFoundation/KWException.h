#pragma once

#include <KWFoundation/KWExport.h>

#include <exception>
#include <string>

/// An exception that callers tell apart by its name, such as "Key-value mismatch". The reason says
/// more where there is more to say and is often empty.
class KW_EXPORT KWException : public std::exception {
  public:
    explicit KWException(std::string name, std::string reason = {});
    ~KWException() override;

    const std::string& name() const noexcept { return _name; }
    const std::string& reason() const noexcept { return _reason; }

    /// The name, followed by ": " and the reason where there is one.
    const char* what() const noexcept override { return _text.c_str(); }

  private:
    std::string _name;
    std::string _reason;
    std::string _text;
};
