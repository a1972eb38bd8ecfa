#include "readers/line_source.h"

#include <cstring>

namespace kavren {
namespace {
constexpr std::size_t kChunk = 1 << 18;
}  // namespace

LineSource::LineSource(const char* file_name) {
  file_ = std::fopen(file_name, "rb");
  if (file_ == nullptr) return;
  if (std::fseek(file_, 0, SEEK_SET) != 0) {
    // Not seekable: keep everything, so the second reading needs no file.
    while (fill()) {
    }
    std::fclose(file_);
    file_ = nullptr;
    in_memory_ = true;
  }
}

LineSource::~LineSource() {
  if (file_ != nullptr) std::fclose(file_);
}

bool LineSource::fill() {
  if (at_end_ || file_ == nullptr) return false;
  if (!in_memory_ && begin_ > 0) {
    // Keep only the unread rest of the line in progress.
    std::memmove(&buffer_[0], buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  if (buffer_.size() < end_ + kChunk) buffer_.resize(end_ + kChunk);
  const std::size_t got = std::fread(&buffer_[end_], 1, kChunk, file_);
  end_ += got;
  if (got < kChunk) at_end_ = true;  // end of file, or a read error (a directory)
  return got > 0;
}

bool LineSource::empty() {
  if (begin_ < end_) return false;
  return !fill();
}

bool LineSource::next(std::string_view& line) {
  std::size_t searched = begin_;
  while (true) {
    const void* newline = std::memchr(buffer_.data() + searched, '\n', end_ - searched);
    if (newline != nullptr) {
      const std::size_t stop =
          static_cast<std::size_t>(static_cast<const char*>(newline) - buffer_.data());
      line = std::string_view(buffer_.data() + begin_, stop - begin_);
      begin_ = stop + 1;
      return true;
    }
    const std::size_t unread = end_ - begin_;
    if (!fill()) {
      if (begin_ == end_) return false;
      line = std::string_view(buffer_.data() + begin_, end_ - begin_);
      begin_ = end_;
      return true;
    }
    searched = begin_ + unread;  // fill() may have moved the rest to the front
  }
}

void LineSource::rewind() {
  begin_ = 0;
  if (in_memory_) return;
  end_ = 0;
  at_end_ = false;
  if (file_ != nullptr) std::fseek(file_, 0, SEEK_SET);
}

}  // namespace kavren
