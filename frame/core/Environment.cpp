#include "frame/core/Environment.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace orvik { namespace core {

std::string readEnvironment(const char* name)
{
    const char* const value = std::getenv(name);
    std::string text(value ? value : "");
    for (char& letter : text)
        letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return text;
}

void warnOfEnvironment(const char* name, const std::string& value, const char* expected)
{
    std::fprintf(stderr, "orvik: %s is \"%s\", which is ignored; expected: %s\n", name, value.c_str(), expected);
}

}}  // namespace orvik::core
