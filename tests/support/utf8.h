// UTF-8 as its definition has it, one sequence at a time.
#ifndef UTF8_H
#define UTF8_H

/// Length of the sequence at s (n > 0 bytes) and its value, by cases; -1 where there is none.
inline int DecodeUtf8(const unsigned char* s, unsigned long n, unsigned& value) {
  const unsigned lead = s[0];
  if (lead < 0x80) return value = lead, 1;
  const int length = lead < 0xC0   ? 0
                     : lead < 0xE0 ? 2
                     : lead < 0xF0 ? 3
                     : lead < 0xF8 ? 4
                     : lead < 0xFC ? 5
                     : lead < 0xFE ? 6
                                   : 0;
  if (length == 0 || n < static_cast<unsigned>(length)) return -1;
  unsigned long long bits = lead & (0x7F >> length);
  for (int i = 1; i < length; ++i) {
    if (s[i] < 0x80 || s[i] > 0xBF) return -1;
    bits = bits * 64 + (s[i] - 0x80);
  }
  const unsigned long long first[] = {0, 0, 0x80, 0x800, 0x10000, 0x200000, 0x4000000};
  value = static_cast<unsigned>(bits);
  return bits < first[length] ? -1 : length;
}

#endif
