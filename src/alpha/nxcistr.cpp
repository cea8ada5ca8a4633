// NxCaseIString: alphabetic order without case. Its keys can be turned back into text.

#include "nxcistr.h"

#include "alpha/nxalpha.h"
#include "alpha/nxalphatext.h"

namespace {

// Do not change: stored index keys are made of these. They are the tables of
// NxIString with every lower-case letter given the key of its upper-case partner.
constexpr unsigned char kFrom40to7F[64] = {
    0x40, 0x54, 0x5B, 0x5E, 0x61, 0x69, 0x6F, 0x71, 0x73, 0x79, 0x7F, 0x81, 0x83, 0x85, 0x87, 0x90,  // 0x40
    0x97, 0x99, 0x9B, 0x9D, 0x9F, 0xA5, 0xAB, 0xAD, 0xAF, 0xB3, 0xB7, 0x42, 0x43, 0x44, 0x45, 0x46,  // 0x50
    0x41, 0x54, 0x5B, 0x5E, 0x61, 0x69, 0x6F, 0x71, 0x73, 0x79, 0x7F, 0x81, 0x83, 0x85, 0x87, 0x90,  // 0x60
    0x97, 0x99, 0x9B, 0x9D, 0x9F, 0xA5, 0xAB, 0xAD, 0xAF, 0xB3, 0xB7, 0x47, 0x48, 0x49, 0x4A, 0x4B,  // 0x70
};
constexpr unsigned char kFromC0toFF[64] = {
    0x54, 0x54, 0x54, 0x54, 0x54, 0xBD, 0xB9, 0x5E, 0x69, 0x69, 0x69, 0x69, 0x79, 0x79, 0x79, 0x79,  // 0xC0
    0x63, 0x89, 0x90, 0x90, 0x90, 0x90, 0x90, 0x4C, 0xBB, 0xA5, 0xA5, 0xA5, 0xA5, 0xB3, 0xBF, 0x9D,  // 0xD0
    0x54, 0x54, 0x54, 0x54, 0x54, 0xBD, 0xB9, 0x5E, 0x69, 0x69, 0x69, 0x69, 0x79, 0x79, 0x79, 0x79,  // 0xE0
    0x63, 0x89, 0x90, 0x90, 0x90, 0x90, 0x90, 0x4D, 0xBB, 0xA5, 0xA5, 0xA5, 0xA5, 0xB3, 0xBF, 0xB3,  // 0xF0
};
constexpr unsigned char kOverC0toFF[64] = {
    0x03, 0x02, 0x04, 0x05, 0x01, 0x00, 0x00, 0x01, 0x03, 0x02, 0x04, 0x01, 0x03, 0x02, 0x04, 0x01,  // 0xC0
    0x00, 0x00, 0x03, 0x02, 0x04, 0x05, 0x01, 0x00, 0x00, 0x03, 0x02, 0x04, 0x01, 0x02, 0x00, 0x9D,  // 0xD0
    0x03, 0x02, 0x04, 0x05, 0x01, 0x00, 0x00, 0x01, 0x03, 0x02, 0x04, 0x01, 0x03, 0x02, 0x04, 0x01,  // 0xE0
    0x00, 0x00, 0x03, 0x02, 0x04, 0x05, 0x01, 0x00, 0x00, 0x03, 0x02, 0x04, 0x01, 0x02, 0x00, 0x01,  // 0xF0
};
constexpr NxMappedByte kLowerOe = {0x90, 0x69};

constexpr int kNotInTable = 64;

int IndexOf(const unsigned char (&table)[64], unsigned char key) {
  int i = 0;
  while (i < kNotInTable && table[i] != key) ++i;
  return i;
}

}  // namespace

const NxByteMap NxAlphaRules<NxCaseIString>::kMap =
    NxMakeByteMap(kFrom40to7F, kFromC0toFF, kOverC0toFF, kLowerOe);

template class NxAlphaText<NxCaseIString>;

unsigned char _NxCaseIMapByte(unsigned char c, unsigned char& extra) {
  extra = NxAlphaRules<NxCaseIString>::kMap.extra[c];
  return NxAlphaRules<NxCaseIString>::kMap.key[c];
}

int _NxCaseIMapString(unsigned char* dst, const unsigned char* src, unsigned short limit) {
  return NxMapString<NxCaseIString>(dst, src, limit);
}

unsigned char _NxCaseIDeMapByte(unsigned char k, unsigned char next, int& consumed) {
  consumed = 1;
  int i = IndexOf(kFromC0toFF, k);
  if (i != kNotInTable && kOverC0toFF[i] == next && next != k) return static_cast<unsigned char>(0xC0 + i);
  consumed = 0;
  i = IndexOf(kFrom40to7F, k);
  // A ligature begins with the key of a letter, so it comes back as two letters.
  if (i != kNotInTable) return static_cast<unsigned char>(0x40 + i);
  if (k >= 0xE0) return k - 0x60;
  return k >= 0xB0 && k <= 0xCF ? k - 0x10 : k;
}

int _NxCaseIDeMapString(unsigned char* dst, const unsigned char* src, unsigned short limit) {
  if (!dst || !src) return 0;
  if (limit == 0) return 1;
  int count = 0;
  while (*src && count < limit) {
    int taken = 0;
    *dst++ = _NxCaseIDeMapByte(src[0], src[1], taken);
    count += 1 + taken;
    // A letter may take the terminator for its second key; the text ends there all the same.
    src += src[1] ? 1 + taken : 1;
  }
  if (count < limit) {
    *dst = 0;
    ++count;
  }
  return count;
}

int nxcaseistrcmp(const char* a, const char* b, unsigned short len, unsigned char formA,
                  unsigned char formB) {
  return NxCompareAlpha<NxCaseIString>(a, b, len, formA, formB);
}

int _NxCaseIMapLength(const void* data, unsigned char mode, unsigned long n) {
  return static_cast<int>(NxMapLength<NxCaseIString>(data, mode, n));
}

int _NxCaseISizeNoMem(const void* image, unsigned char mode, unsigned char mapped, unsigned long n) {
  return static_cast<int>(NxSizeNoMem<NxCaseIString>(image, mode, mapped, n));
}

int _NxCaseISizeMem(const void* array, unsigned char mode, unsigned char mapped, unsigned long n) {
  return static_cast<int>(NxSizeMem<NxCaseIString>(array, mode, mapped, n));
}
