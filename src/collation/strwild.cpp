// The byte matchers: plain comparison, wildcards over bytes, and the glob with escapes.

#include "strwild.h"

#include <cstring>

#include "collation/nxglob.h"

int nxstrcmp(const char* a, const char* b, int n) {
  if (!a) return b && *b ? -1 : 0;
  if (!b) return *a ? 1 : 0;
  for (;; ++a, ++b) {
    if (*a != *b) return NxByteAt(a) - NxByteAt(b);
    if (*a == 0 || --n == 0) return 0;
  }
}

// ---------------------------------------------------------------------------
// nxstrwild

namespace {

/// One match of a text against a pattern of "*" and "?".
class ByteMatch {
 public:
  ByteMatch(const char* pattern, const char* text, int n) : p_(pattern), t_(text), left_(n) {}
  int Run();

 private:
  bool PassStars();
  bool Retry();

  const char* p_;
  const char* t_;
  int left_;                         // bytes still to be matched; 0 or less: no limit
  const char* afterStar_ = nullptr;  // the pattern behind the last star
  const char* retry_ = nullptr;      // where the text is to be tried next
};

int ByteMatch::Run() {
  for (;;) {
    if (*p_ == '*') {
      if (PassStars()) return 0;
      if (!Retry()) return -NxByteAt(p_);
    } else if (*p_ == '?' && *t_ == 0) {
      return -1;
    } else if (*p_ == '?' || *p_ == *t_) {
      if (*p_ == 0) return 0;
      ++p_, ++t_;
      if (--left_ == 0) return 0;
    } else {
      if (!afterStar_) return NxByteAt(t_) - NxByteAt(p_);
      p_ = afterStar_;
      if (!Retry()) return -NxByteAt(p_);
    }
  }
}

/// True when the pattern ends with its stars.
bool ByteMatch::PassStars() {
  while (*++p_ == '*') {
  }
  afterStar_ = p_;
  retry_ = t_;
  return *p_ == 0;
}

/// Takes the text to the next place where the part behind the star can begin.
bool ByteMatch::Retry() {
  t_ = retry_;
  while (*t_ != *p_ && *p_ != '?') {
    if (*t_ == 0) return false;
    ++t_;
  }
  if (*t_ != 0) retry_ = t_ + 1;
  return true;
}

}  // namespace

int nxstrwild(const char* pattern, const char* text, int n) {
  if (!pattern) return text && *text ? 1 : 0;
  if (!text) return *pattern ? -1 : 0;
  return ByteMatch(pattern, text, n).Run();
}

// ---------------------------------------------------------------------------
// Glob with escapes

int strwild(const char* pattern, const char* text) { return NxGlob(pattern, text, NxPlainBytes()); }

int strwc(const char* pattern) {
  if (!pattern) return -1;
  const std::size_t position = std::strcspn(pattern, "?*\\");
  return pattern[position] ? static_cast<int>(position) : -1;
}
