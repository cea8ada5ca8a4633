/// The code sets: four of one byte, Unicode, and the order-value text in which
/// every unit already is what a character orders by. All of them are constant.
#include "nxlangdata.h"

namespace {

using nxdata::kNoCharacter;

/// Languages that change no place in the order share one selector, so that
/// their texts compare with one another.
constexpr unsigned char SelectorOf(unsigned char language) {
  return language == kLanguageSpanish || language == kLanguageSwedish || language == kLanguageDanish
             ? language
             : kLanguageEnglish;
}

/// Any code set's character in Unicode; order values stand for no character.
unsigned short ToUnicode(unsigned short value, unsigned char source) {
  if (source == kCodeSetOrderValues) return value == 0 ? 0 : kNoCharacter;
  const unsigned short* flat = NxLanguageContext::QueryCodeSet(source)->FlatToUnicode();
  if (flat == nullptr) return value;
  return value < 256 ? flat[value] : kNoCharacter;
}

class ByteTable final : public NxCharTable {
 public:
  constexpr explicit ByteTable(const NxCharInfo* const* records) : records_(records) {}
  /// No byte is above 255; whoever asks for more gets what cannot be mapped.
  const NxCharInfo* Find(unsigned short value) const override {
    return records_[value < 256 ? value : kNoCharacter];
  }

 private:
  const NxCharInfo* const* records_;
};

template <unsigned char kNumber, const auto& kToUnicode, const auto& kApart>
class ByteCodeSet final : public NxCodeSet {
  using Tables = nxdata::ByteTables<kToUnicode, kApart>;

 public:
  constexpr ByteCodeSet() {
    number_ = kNumber;
    table_ = &charTable_;
    flatRecords_ = Tables::kRecordsByByte.data();
    flatToUnicode_ = kToUnicode;
    flatProps_ = Tables::kPropsByByte.data();
  }
  unsigned char GetCollation(unsigned char language) const override { return SelectorOf(language); }
  unsigned short MapFrom(unsigned short value, unsigned char source) const override {
    return source == kNumber ? value : Tables::FromUnicode(ToUnicode(value, source));
  }

 private:
  ByteTable charTable_{Tables::kRecordsByByte.data()};
};

class UnicodeTable final : public NxCharTable {
 public:
  constexpr UnicodeTable() { low_ = nxdata::kRecords; }
  const NxCharInfo* Find(unsigned short value) const override { return nxdata::RecordOf(value); }
};

class UnicodeCodeSet final : public NxCodeSet {
 public:
  constexpr UnicodeCodeSet() {
    number_ = kCodeSetUnicode;
    table_ = &charTable_;
  }
  unsigned char GetCollation(unsigned char language) const override { return SelectorOf(language); }
  unsigned short MapFrom(unsigned short value, unsigned char source) const override {
    return ToUnicode(value, source);
  }

 private:
  UnicodeTable charTable_;
};

/// Every unit orders as itself: below 512 by its record, above without one.
class OrderValueTable final : public NxCharTable {
 public:
  constexpr OrderValueTable() { low_ = nxdata::kOrderValueRecords.data(); }
  const NxCharInfo* Find(unsigned short value) const override { return value < 512 ? low_ + value : nullptr; }
};

class OrderValueCodeSet final : public NxCodeSet {
 public:
  constexpr OrderValueCodeSet() {
    number_ = kCodeSetOrderValues;
    table_ = &charTable_;
  }
  /// A key image keeps the selector of its text in the place of the language.
  unsigned char GetCollation(unsigned char language) const override { return language & 0x7F; }
  unsigned short MapFrom(unsigned short value, unsigned char source) const override {
    if (source == kCodeSetOrderValues) return value;
    const unsigned short unicode = ToUnicode(value, source);
    const NxCharInfo* record = nxdata::RecordOf(unicode);
    return record != nullptr ? record->order : unicode;
  }

 private:
  OrderValueTable charTable_;
};

constexpr ByteCodeSet<kCodeSetLatin1, nxdata::kLatin1ToUnicode, nxdata::kLatin1Apart> kLatin1;
constexpr ByteCodeSet<kCodeSetWindows1252, nxdata::kWindows1252ToUnicode, nxdata::kWindows1252Apart>
    kWindows1252;
constexpr ByteCodeSet<kCodeSetLatin9, nxdata::kLatin9ToUnicode, nxdata::kLatin9Apart> kLatin9;
constexpr ByteCodeSet<kCodeSetLatin2, nxdata::kLatin2ToUnicode, nxdata::kLatin2Apart> kLatin2;
constexpr UnicodeCodeSet kUnicode;
constexpr OrderValueCodeSet kOrderValues;

// Turkish keeps the dot of i, and its absence, through a change of case.
constexpr NxUnicodeProps kTurkishSmallI = {0x130, 0, nullptr};
constexpr NxUnicodeProps kTurkishCapitalI = {0, 0x131, nullptr};

}  // namespace

const NxUnicodeProps* NxCodeSet::GetUnicodeProps(unsigned short value, unsigned char language) const {
  if (number_ == kCodeSetOrderValues) return nullptr;
  if (language == kLanguageTurkish && (value == 'i' || value == 'I')) {
    if (flatProps_ != nullptr) return nullptr;  // none of the 8-bit code sets has the counterparts
    return value == 'i' ? &kTurkishSmallI : &kTurkishCapitalI;
  }
  if (flatProps_ == nullptr) return nxdata::CaseOf(value);
  if (value > 0xFF || (flatProps_[value].upper | flatProps_[value].lower) == 0) return nullptr;
  return &flatProps_[value];
}

const NxCodeSet* NxLanguageContext::QueryCodeSet(unsigned char codeSet) {
  switch (codeSet) {
    case kCodeSetWindows1252:
      return &kWindows1252;
    case kCodeSetLatin9:
      return &kLatin9;
    case kCodeSetLatin2:
      return &kLatin2;
    case kCodeSetOrderValues:
      return &kOrderValues;
    default:
      return codeSet < kCodeSetFirst16Bit ? static_cast<const NxCodeSet*>(&kLatin1) : &kUnicode;
  }
}
