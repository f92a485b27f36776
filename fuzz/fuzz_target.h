// What a fuzz target consists of: an entry, and inputs to start from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

using FuzzInput = std::vector<std::uint8_t>;

/// Takes any bytes. Returns 0; a fault of the code ends the process.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Sound inputs, made by the project's own code; at least one.
std::vector<FuzzInput> fuzzCorpus();

/// Ends the process with the text unless the condition holds.
void fuzzRequire(bool holds, const char* what);
