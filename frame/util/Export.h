#pragma once

/// Marks what a library of the kit shows to others; everything else is hidden.
#define ORVIK_API __attribute__((visibility("default")))
