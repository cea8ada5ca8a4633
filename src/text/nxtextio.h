// Texts on their way in and out: the input of a scan as 8-bit text, and a string that
// grows by pieces.
#ifndef NXTEXTIO_H
#define NXTEXTIO_H

#include <cstring>
#include <optional>

#include "nxlang.h"
#include "nxstring.h"
#include "text/nxstrbuild.h"

/// The input of a scan as 8-bit text.
class NxScanText {
 public:
  explicit NxScanText(const NxString& in) : in_(in) {
    if (NxCharWidth(in._nCodeSet) == 1) return;
    const NxShortageWatch shortage;
    copy_.emplace() += in;
    missing_ = shortage.Happened();
  }
  /// No memory for it: what is to be scanned stays as it is.
  bool IsMissing() const { return missing_; }
  const NxString& String() const { return copy_ ? *copy_ : in_; }
  const char* Chars() const { return String().StrGet(); }

 private:
  const NxString& in_;
  std::optional<NxString> copy_;
  bool missing_ = false;
};

/// Whether a text begins with the null text, which `NxTypeMgr::GetNullPrintString`
/// hands out: character by character, whatever collation says.
bool NxBeginsWithNullText(const NxString& in);

/// Appends pieces of 8-bit text to a string, many at a time: each append to an
/// NxString allocates it anew.
class NxPieceWriter {
 public:
  explicit NxPieceWriter(NxString& out) : out_(out) {}
  ~NxPieceWriter() { Flush(); }

  void Add(const char* text) { Add(text, std::strlen(text)); }
  void Add(const char* text, unsigned long length) {
    while (length > 0) {
      if (used_ == sizeof buffer_) Spill();
      const unsigned long room = sizeof buffer_ - used_;
      const unsigned long part = length < room ? length : room;
      std::memcpy(buffer_ + used_, text, part);
      used_ += part;
      text += part;
      length -= part;
    }
  }

  /// Appends what has been collected, as the destructor does.
  void Flush() {
    if (used_ > 0) NxAppendText(longer_ ? *longer_ : out_, buffer_, used_);
    used_ = 0;
    if (longer_) out_.Destruct(*longer_);
    longer_.reset();
  }

  /// A place for at most n bytes, no more than a buffer's size; Took says where the bytes
  /// written there end.
  char* Room(unsigned long n) {
    if (sizeof buffer_ - used_ < n) Spill();
    return buffer_ + used_;
  }
  void Took(const char* end) { used_ = static_cast<unsigned long>(end - buffer_); }

 private:
  /// Makes room in a copy: out may hold the text that more pieces come from.
  void Spill() {
    if (!longer_) longer_.emplace(out_);
    NxAppendText(*longer_, buffer_, used_);
    used_ = 0;
  }

  NxString& out_;
  std::optional<NxString> longer_;
  unsigned long used_ = 0;
  char buffer_[2048];
};

#endif
