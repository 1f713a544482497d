#pragma once

#include <cstdlib>
#include <iostream>
#include <string_view>

/// Ends the program with what was wrong, unless it holds.
inline void expect(bool holds, std::string_view what) {
    if (holds)
        return;
    std::cerr << "it does not hold that " << what << '\n';
    std::exit(1);
}
