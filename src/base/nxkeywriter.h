// Writes the bytes of a sort key as far as there is room, and counts them all.
#ifndef NXKEYWRITER_H
#define NXKEYWRITER_H

#include <cstring>

class NxKeyWriter {
 public:
  /// `descending` turns the order of the keys round: every byte is complemented.
  NxKeyWriter(void* key, unsigned long room, bool descending = false)
      : key_(static_cast<unsigned char*>(key)), room_(room), flip_(descending ? 0xFF : 0) {}

  void Put(unsigned byte) {
    if (length_ < room_) key_[length_] = static_cast<unsigned char>(byte ^ flip_);
    ++length_;
  }
  void PutAll(const unsigned char* bytes, unsigned long n) {
    if (flip_ == 0 && length_ + n <= room_) {
      std::memcpy(key_ + length_, bytes, n);
      length_ += n;
    } else {
      while (n-- > 0) Put(*bytes++);
    }
  }
  /// The low 16 bits, the high byte first.
  void Put16(unsigned value) {
    Put(value >> 8 & 0xFF);
    Put(value & 0xFF);
  }
  /// Bytes of the whole key, also of those that had no room.
  unsigned long Length() const { return length_; }

 private:
  unsigned char* const key_;
  const unsigned long room_;
  const unsigned char flip_;
  unsigned long length_ = 0;
};

#endif
