/// The code sets: four of one byte, Unicode, and the order-value text in which
/// every unit already is what a character orders by.
#include "nxlangdata.h"

#include <array>

namespace {

/// Languages that change no place in the order share one selector, so that
/// their texts compare with one another.
constexpr unsigned char SelectorOf(unsigned char language) {
  switch (language) {
    case kLanguageSpanish:
    case kLanguageSwedish:
    case kLanguageDanish:
      return language;
    default:
      return kLanguageEnglish;
  }
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
  const NxCharInfo* Find(unsigned short value) const override {
    return value < 256 ? records_[value] : NxUnicodeRecord(kNoCharacter);
  }

 private:
  const NxCharInfo* const* records_;
};

class ByteCodeSet final : public NxCodeSet {
 public:
  explicit ByteCodeSet(unsigned char number) : tables_(NxByteTablesOf(number)), charTable_(tables_.records) {
    number_ = number;
    table_ = &charTable_;
    flatRecords_ = tables_.records;
    flatToUnicode_ = tables_.toUnicode;
    flatProps_ = tables_.props;
  }
  unsigned char GetCollation(unsigned char language) const override { return SelectorOf(language); }
  unsigned short MapFrom(unsigned short value, unsigned char source) const override {
    if (source == number_) return value;
    return tables_.fromUnicode(ToUnicode(value, source));
  }

 private:
  const NxByteTables& tables_;
  ByteTable charTable_;
};

class UnicodeTable final : public NxCharTable {
 public:
  UnicodeTable() { low_ = NxUnicodeLowRecords(); }
  const NxCharInfo* Find(unsigned short value) const override { return NxUnicodeRecord(value); }
};

class UnicodeCodeSet final : public NxCodeSet {
 public:
  UnicodeCodeSet() {
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

constexpr std::array<NxCharInfo, 512> MakeOrderValueRecords() {
  std::array<NxCharInfo, 512> records{};
  for (unsigned short order = 0; order < 512; ++order)
    records[order] = {order, NxCharInfo::kNoCollation, nullptr, nullptr, nullptr};
  return records;
}
constexpr std::array<NxCharInfo, 512> kOrderValueRecords = MakeOrderValueRecords();

/// Every unit orders as itself: below 512 by its record, above without one.
class OrderValueTable final : public NxCharTable {
 public:
  OrderValueTable() { low_ = kOrderValueRecords.data(); }
  const NxCharInfo* Find(unsigned short value) const override {
    return value < kOrderValueRecords.size() ? &kOrderValueRecords[value] : nullptr;
  }
};

class OrderValueCodeSet final : public NxCodeSet {
 public:
  OrderValueCodeSet() {
    number_ = kCodeSetOrderValues;
    table_ = &charTable_;
  }
  /// A key image keeps the selector of its text in the place of the language.
  unsigned char GetCollation(unsigned char language) const override { return language & 0x7F; }
  unsigned short MapFrom(unsigned short value, unsigned char source) const override {
    if (source == kCodeSetOrderValues) return value;
    const unsigned short unicode = ToUnicode(value, source);
    const NxCharInfo* record = NxUnicodeRecord(unicode);
    return record != nullptr ? record->order : unicode;
  }

 private:
  OrderValueTable charTable_;
};

// Turkish keeps the dot of i, and its absence, through a change of case.
constexpr unsigned short kCapitalIWithDot = 0x130;
constexpr unsigned short kSmallDotlessI = 0x131;
constexpr NxUnicodeProps kTurkishSmallI = {kCapitalIWithDot, 0, nullptr};
constexpr NxUnicodeProps kTurkishCapitalI = {0, kSmallDotlessI, nullptr};

}  // namespace

const NxUnicodeProps* NxCodeSet::GetUnicodeProps(unsigned short value, unsigned char language) const {
  if (number_ == kCodeSetOrderValues) return nullptr;
  if (language == kLanguageTurkish && (value == 'i' || value == 'I')) {
    if (flatProps_ != nullptr) return nullptr;  // none of the 8-bit code sets has the counterparts
    return value == 'i' ? &kTurkishSmallI : &kTurkishCapitalI;
  }
  if (flatProps_ == nullptr) return NxUnicodeCase(value);
  if (value > 0xFF || (flatProps_[value].upper | flatProps_[value].lower) == 0) return nullptr;
  return &flatProps_[value];
}

const NxCodeSet* NxLanguageContext::QueryCodeSet(unsigned char codeSet) {
  static const ByteCodeSet latin1(kCodeSetLatin1);
  static const ByteCodeSet windows1252(kCodeSetWindows1252);
  static const ByteCodeSet latin9(kCodeSetLatin9);
  static const ByteCodeSet latin2(kCodeSetLatin2);
  static const UnicodeCodeSet unicode;
  static const OrderValueCodeSet orderValues;
  switch (codeSet) {
    case kCodeSetWindows1252:
      return &windows1252;
    case kCodeSetLatin9:
      return &latin9;
    case kCodeSetLatin2:
      return &latin2;
    case kCodeSetOrderValues:
      return &orderValues;
    default:
      return codeSet < kCodeSetFirst16Bit ? static_cast<const NxCodeSet*>(&latin1) : &unicode;
  }
}
