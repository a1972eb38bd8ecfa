// Whole-file reading for the two input files.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kavren {

// Reads every byte of the file into `bytes`. False only when the file cannot be
// opened; a file that opens but cannot be read (a directory) reads as empty, as a
// stream opened on it would deliver nothing.
bool read_file_bytes(const char* file_name, std::string& bytes);

// The bytes of a file without a copy: a regular file is mapped into memory and read by
// the kernel as it is touched; anything else is read as read_file_bytes reads it. A
// mapped file that another program shortens while it is read raises SIGBUS when the
// missing part is touched.
class MappedFile {
 public:
  MappedFile() = default;
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  // False only when the file cannot be opened.
  bool open(const char* file_name);
  std::string_view text() const { return text_; }

 private:
  void* map_ = nullptr;
  std::size_t mapped_ = 0;
  std::string read_;
  std::string_view text_;
};

}  // namespace kavren
