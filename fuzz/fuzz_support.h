// Shared plumbing of the fuzz targets: a private working folder, a silent standard
// output, and the bytes of the current input written to a file there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace kavren::fuzz {

// Creates (once) a private folder, makes it the working directory and silences
// std::cout. Returns the folder.
const std::string& workdir();
// Writes the fuzzer's bytes to `name` inside the working folder; returns its path.
std::string write_input(const char* name, const uint8_t* data, size_t size);

}  // namespace kavren::fuzz
