// What is known of a type of texts: its values, images and keys, and how it compares them.
#ifndef TEXTSUBJECT_H
#define TEXTSUBJECT_H

#include <algorithm>
#include <cstdlib>
#include <ostream>

#include "alpha/nxalpha.h"
#include "nxcistr.h"
#include "nxistr.h"
#include "nxtypcmp.h"
#include "nxtypes.h"
#include "nxtypevl.h"
#include "nxtypmgr.h"
#include "support/block.h"
#include "support/strings.h"

struct Kind {
  const char* name;
  unsigned long factory;
  char id;
  const char* letters;  // where case, accents and second keys meet
};
inline const Kind kKinds[] = {{"NxString", 5, 11,
                               "aAb\xE1\xC4"
                               "c1h- *?"},
                              {"EarlyNxString", 3, 11, "aAb1- *?"},
                              {"NxIString", 5, 20, "aAbs\xDF\x8C\xC0\xC9\\- *?"},
                              {"NxCaseIString", 5, 21, "aAbs\xDF\x8C\xC0\xC9\\- *?"}};

/// A type of texts, and words for it that are drawn as `Below` says.
class TextSubject {
 public:
  explicit TextSubject(const Kind& kind) : kind(kind) {}
  virtual ~TextSubject() = default;
  /// A number below n.
  virtual unsigned Below(unsigned n) = 0;

  bool IsEarly() const { return kind.factory == 3; }
  bool IsAlpha() const { return id != 11; }
  /// A short word over the letters; without wildcards when it is no pattern.
  std::string Word(bool pattern = false) {
    const std::string letters(kind.letters);
    std::string word(Below(6), ' ');
    for (char& c : word) c = letters[Below(static_cast<unsigned>(letters.size()) - (pattern ? 0 : 2))];
    return word;
  }

  /// Values in memory.
  class Values {
   public:
    Values(TextSubject& test, unsigned long n) : test_(test), n_(n), data_(test.mgr.Create(test.id, n)) {}
    Values(TextSubject& test, const std::vector<std::string>& texts, unsigned char codeSet = 1,
           unsigned char language = 1)
        : Values(test, texts.size()) {
      for (unsigned long i = 0; i < n_; ++i)
        if (test.id == 11)
          At<NxString>(i) =
              texts[i].empty() ? NxString(codeSet, language) : String(Widened(texts[i]), codeSet, language);
        else if (test.id == 20)
          At<NxIString>(i) = texts[i].c_str();
        else
          At<NxCaseIString>(i) = texts[i].c_str();
    }
    Values(const Values&) = delete;
    Values& operator=(const Values&) = delete;
    ~Values() { test_.mgr.Delete(test_.id, data_, n_); }
    void* Data() const { return data_; }
    template <class T>
    T& At(unsigned long i) const {
      return static_cast<T*>(data_)[i];
    }
    /// The texts, of strings as bytes of code set 1.
    std::vector<std::string> Texts() const {
      std::vector<std::string> texts;
      for (unsigned long i = 0; i < n_; ++i) {
        NxString s = test_.id == 11 ? At<NxString>(i) : NxString(At<NxIString>(i)._pStr);
        if (test_.id == 11 && NxCharWidth(s._nCodeSet) == 2) s.MapToCodeSet(1);
        texts.push_back(Text(s));
      }
      return texts;
    }

   private:
    TextSubject& test_;
    unsigned long n_;
    void* data_;
  };

  /// The image of texts under a format, from its definition.
  std::string Image(const std::vector<std::string>& texts, unsigned char format, unsigned char codeSet = 1,
                    unsigned char language = 1) const {
    if (IsEarly()) return EarlyImage(texts, format & 15);
    if (IsAlpha()) return AlphaImage(0x40, OnDisk(texts), format);
    std::string image;
    for (const std::string& text : texts) image += StringImage(text, codeSet, language, format);
    return image;
  }
  std::vector<std::string> OnDisk(std::vector<std::string> texts) const {
    for (std::string& text : texts)
      for (char& c : text) c = static_cast<char>(_NxConvertToDiskFormat(static_cast<unsigned char>(c)));
    return texts;
  }

  /// What Translate makes of a source: `filled` in a destination of `length` bytes.
  std::string Translated(void* src, unsigned char srcForm, unsigned long srcLength, unsigned char dstForm,
                         unsigned long length, unsigned long n, std::string* filled = nullptr) {
    Block dst(length);
    const int produced = mgr.Translate(id, dst.Data(), dstForm, length, src, srcForm, srcLength, n);
    if (filled) *filled = Str(dst);
    return Str(dst, std::min<unsigned long>(static_cast<unsigned long>(produced), length));
  }
  std::string Key(const std::string& image, unsigned char format, unsigned long room = 254) {
    const Block source = Exactly(image);
    std::string key = Translated(source.Data(), format & 15, source.Size(), format | kFormatKey, room, 1);
    // The keys of alphabetic types say how long they are.
    return IsAlpha() && key.size() > 3 ? key.substr(0, 3 + LengthOf(key.substr(1), format)) : key;
  }
  static unsigned LengthOf(const std::string& field, unsigned char format) {
    unsigned short n;
    ShortStore(&n, field.data(), format & 15, 1);
    return n;
  }

  struct Answer {
    int sign, error;
    bool operator==(const Answer& a) const { return sign == a.sign && error == a.error; }
    friend std::ostream& operator<<(std::ostream& out, const Answer& a) {
      return out << a.sign << "/" << a.error;
    }
  };
  Answer Compare(const std::string& a, const std::string& b, unsigned short options, unsigned char format = 1,
                 unsigned long n = 1) {
    const Block x = Exactly(a), y = Exactly(b);
    // Early arrays are compared without limits only: their first length is that of all texts.
    const bool limited = n == 1 || !IsEarly();
    int error = 77;
    const long order = mgr.Cmp(id, limited ? x.Size() : 0, x.Data(), limited ? y.Size() : 0, y.Data(),
                               options, n, format, error);
    return {Sign(order), error};
  }

  const Kind kind;
  const char id = kind.id;
  NxTypeMgr mgr{kind.factory};
};

struct Bounds : NxIdxBounds {
  Bounds() : NxIdxBounds{} {}
  Bounds(const Bounds&) = delete;
  Bounds& operator=(const Bounds&) = delete;
  ~Bounds() {
    std::free(lower);
    std::free(upper);
  }
  std::string Lower() const { return std::string(static_cast<char*>(lower), lowerLen); }
  std::string Upper() const { return std::string(static_cast<char*>(upper), upperLen); }
};

#endif
