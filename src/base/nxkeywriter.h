// Writes the bytes of a sort key as far as there is room, and counts them all.
#ifndef NXKEYWRITER_H
#define NXKEYWRITER_H

class NxKeyWriter {
 public:
  /// `descending` turns the order of the keys round: every byte is complemented.
  NxKeyWriter(void* key, unsigned long room, bool descending = false)
      : key_(static_cast<unsigned char*>(key)), room_(room), flip_(descending ? 0xFF : 0) {}

  void Put(unsigned byte) {
    if (length_ < room_) key_[length_] = static_cast<unsigned char>(byte ^ flip_);
    ++length_;
  }
  /// Bytes that can be put at Place() by oneself; Take then counts them in. None in a
  /// descending key.
  unsigned long Room() const { return flip_ == 0 && length_ < room_ ? room_ - length_ : 0; }
  unsigned char* Place() const { return key_ + length_; }
  void Take(unsigned long n) { length_ += n; }
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
