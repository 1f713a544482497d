#include <KWFoundation/KWException.h>

#include <utility>

KWException::KWException(std::string name, std::string reason)
    : _name(std::move(name)), _reason(std::move(reason)),
      _text(_reason.empty() ? _name : _name + ": " + _reason) {}

// Here, so that the type's identity lives in one library and catching works across libraries.
KWException::~KWException() = default;
