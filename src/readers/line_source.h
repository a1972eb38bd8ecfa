// The lines of a file as getline delivers them, read in chunks so that a large
// solution is never held whole in memory, and readable twice.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace kavren {

class LineSource {
 public:
  // Opens the file; is_open() tells whether that worked. A file that cannot be
  // rewound (a pipe) is read whole at once instead.
  explicit LineSource(const char* file_name);
  ~LineSource();
  LineSource(const LineSource&) = delete;
  LineSource& operator=(const LineSource&) = delete;

  bool is_open() const { return file_ != nullptr || in_memory_; }
  // True when the file holds no byte at all.
  bool empty();
  // The next line without its '\n'; false at the end. A last line without a line
  // break is still a line; nothing follows a final line break. The view stays valid
  // until the next call.
  bool next(std::string_view& line);
  // Starts over at the first line.
  void rewind();

 private:
  bool fill();  // reads more bytes after the unread rest; false when none came

  std::FILE* file_ = nullptr;
  bool in_memory_ = false;
  bool at_end_ = false;
  std::string buffer_;
  std::size_t begin_ = 0;  // unread bytes are buffer_[begin_, end_)
  std::size_t end_ = 0;
};

}  // namespace kavren
