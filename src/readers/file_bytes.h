// Whole-file reading for the two input files.
#pragma once

#include <string>

namespace kavren {

// Reads every byte of the file into `bytes`. False only when the file cannot be
// opened; a file that opens but cannot be read (a directory) reads as empty, as a
// stream opened on it would deliver nothing.
bool read_file_bytes(const char* file_name, std::string& bytes);

}  // namespace kavren
