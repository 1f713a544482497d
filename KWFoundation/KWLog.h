#pragma once

#include <KWFoundation/KWExport.h>

#include <functional>
#include <string_view>

/// Receives one diagnostic line, without its line end.
using KWLogHandler = std::function<void(std::string_view)>;

/// Hands a diagnostic line to the handler in place; by default that is standard error.
/// Safe to call from several threads.
KW_EXPORT void KWLog(std::string_view line);

/// Puts another handler in place and answers the one before it. An empty handler restores the
/// default. The handler is called on the thread that logs, one line at a time, and no more once
/// this has returned on another thread. What a handler itself logs goes to standard error.
KW_EXPORT KWLogHandler KWSetLogHandler(KWLogHandler handler);
