#pragma once

#include <string>

namespace orvik { namespace core {

/// The value of a variable of the environment, in small letters; empty where it is unset.
std::string readEnvironment(const char* name);

/// Tells on the standard error stream that a variable's value is none of the expected ones. Loggers are not set up when
/// variables are read, and without a word a measurement would be of something else than was asked for.
void warnOfEnvironment(const char* name, const std::string& value, const char* expected);

}}  // namespace orvik::core
