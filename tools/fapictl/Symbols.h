#pragma once

#include <string>
#include <vector>

// What shared libraries say that they define.
namespace fapictl {

/** "f(int)" for _Z1fi; what is no C++ name stays as it is. */
std::string demangled(const std::string& name);

/**
 * Why the loader does not find a function, as far as the libraries' tables tell: which symbol there could be
 * meant by it. Empty when none looks like it.
 */
std::string nearMiss(const std::string& mangled, const std::vector<std::string>& libraries);

}  // namespace fapictl
