#pragma once

/// Marks what a shared library of the family gives to its users. Everything else is compiled with hidden visibility
/// and is not there for a program that links the library.
#define TARN_EXPORT __attribute__((visibility("default")))
