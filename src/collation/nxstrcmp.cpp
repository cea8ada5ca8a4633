// The comparison of any two texts: null values and plain bytes are decided here, order
// values alone in one loop, everything else by the level comparison, whose members are
// its steps.

#include "collation/nxstrcmp.h"

#include <algorithm>
#include <utility>

#include "base/nxalloc.h"
#include "nxstring.h"
#include "ord2str.h"
#include "strwild.h"
#include "text/nxchartext.h"

// ---------------------------------------------------------------------------
// Reading order values

bool NxOrderReader::TakeFromTable() {
  const bool wide = NxCharWidth(it._nCodeSet) == 2;
  if (it._pOverflow || (wide && (it._nByteOrder & kFormatCodeMask) == kFormatBigEndian)) return false;
  const unsigned value = wide ? NxUnitAt<unsigned short>(it._pPos) : NxUnitAt<unsigned char>(it._pPos);
  if (value > 255) return false;
  const NxOrderTable::Entry& entry = table_->entries[value];
  if (entry.key & NxOrderTable::kNeedsIterator) return false;
  order = entry.order;
  key = entry.key & ~NxOrderTable::kMarks;
  if (value == 0) return true;
  it._nCollation = entry.selector;
  it._pPos += wide ? 2 : 1;
  return true;
}

void NxOrderReader::TakeFromIterator(unsigned short updateCollation) {
  order = it.GetNextOrder(updateCollation);
  key = GetCompareFromOrder(order, it._nCollation);
}

// ---------------------------------------------------------------------------
// Level comparison

ProcessCharInfo::ProcessCharInfo(const NxOrderReader& firstText, const NxOrderReader& secondText,
                                 unsigned short op, short len, int* outPos)
    : first{firstText},
      second{secondText},
      op_(op),
      len_(len),
      limit_(len == -1 ? kNoLimit : static_cast<unsigned short>(len)),
      outPos_(outPos),
      wildcards_((op & kWildcardsOff) == 0),
      update_(firstText.it._nCodeSet != kCodeSetOrderValues &&
              secondText.it._nCodeSet != kCodeSetOrderValues),
      asterisk_(NxString::GetAsterisk()),
      question_(NxString::GetQuestion()),
      mask_(NxWildcardKeyMask(op)) {}

unsigned short ProcessCharInfo::ProcessChar(unsigned short sideNumber, unsigned short updateCollation,
                                            unsigned short& stop) {
  Side& side = sideNumber == kFirst ? first : sideNumber == kSecond ? second : *node_;
  NxOrderReader& reader = side.reader;
  for (;;) {
    if (++side.count > limit_) {
      reader.TakeEnd();
    } else {
      reader.Next(updateCollation);
    }
    const unsigned short order = reader.order;
    // Wildcards are symbols themselves: they are seen before symbols are skipped.
    if (wildcards_ && sideNumber != kFirst && (order == asterisk_ || order == question_)) {
      stop = 1;
      return 0;
    }
    if (order == 0 || order >= kFirstDigitOrder || reader.it._nCollation >= kPlainOrderSelector) return 0;
    if (IsIgnored(order < kFirstSymbolOrder ? kSkipSpaces : kSkipSymbols)) continue;
    side.ignorable = order;
    return 1;
  }
}

bool ProcessCharInfo::Round() {
  Advance();
  if (wildcards_) {
    AddNode();
    if (second.reader.order == asterisk_ && PassAsterisks()) return true;
  }
  AdvanceNodes();
  TakeLevels();
  MoveMatch();
  Report();
  return primary != 0 || first.reader.order == 0 || (second.reader.order == 0 && !IsStarPending());
}

/// Reads both sides up to their next significant characters, or up to a wildcard.
/// While a star is pending ignorable characters are compared like all others.
void ProcessCharInfo::Advance() {
  first.ignorable = second.ignorable = 0;
  stepIgnorable_ = 0;
  unsigned short stop = 0;
  bool readFirst = true;
  bool readSecond = true;
  while (readFirst || readSecond) {
    if (readFirst) readFirst = ProcessChar(kFirst, update_, stop) != 0;
    if (readSecond) readSecond = ProcessChar(kSecond, update_, stop) != 0;
    if (IsStarPending() || stop) return;
    if (first.ignorable != second.ignorable) stepIgnorable_ = first.ignorable - second.ignorable;
  }
}

/// The match could begin at this character of the text: remembers that.
void ProcessCharInfo::AddNode() {
  const unsigned short order = first.reader.order;
  const bool begins = first.reader.key != 0 && MaskedKey(first) == pending_;
  if (!begins && !(order != 0 && pendingQuestion_)) return;
  if (nodeEnd_ == nodeCapacity_) {
    const unsigned capacity = nodeCapacity_ ? nodeCapacity_ * 2 : 16;
    std::unique_ptr<Restart[]> grown(NxNewArray<Restart>(capacity));
    if (!grown) return;
    const Restart* const old = nodes_.get();
    nodeEnd_ = static_cast<unsigned>(std::copy(old + nodeHead_, old + nodeEnd_, grown.get()) - grown.get());
    nodeHead_ = 0;
    nodes_ = std::move(grown);
    nodeCapacity_ = capacity;
  }
  nodes_[nodeEnd_++] = {afterStar_.side, accent, letterCase};
}

/// Takes the pattern to the first character after its stars; true when it ends there,
/// since the star then matches the rest of the text.
bool ProcessCharInfo::PassAsterisks() {
  nodeHead_ = nodeEnd_ = 0;
  afterStar_.accent = accent;
  afterStar_.letterCase = letterCase;
  unsigned short stop = 0;
  do {
    afterStar_.side = second;
    ProcessChar(kSecond, update_, stop);
  } while (second.reader.order == asterisk_);
  if (second.reader.order == 0) {
    if (stepIgnorable_ != 0) ignorable = stepIgnorable_;
    return true;
  }
  pending_ = MaskedKey(second);
  pendingQuestion_ = second.reader.order == question_;
  return false;
}

void ProcessCharInfo::AdvanceNodes() {
  unsigned kept = nodeHead_;
  for (unsigned i = nodeHead_; i < nodeEnd_; ++i) {
    node_ = &nodes_[i].side;
    unsigned short stop = 0;
    ProcessChar(kNode, update_, stop);
    const bool any = first.reader.order != 0 && node_->reader.order == question_;
    if (!any && MaskedKey(*node_) != MaskedKey(first)) continue;
    if (kept != i) nodes_[kept] = nodes_[i];
    ++kept;
  }
  nodeEnd_ = kept;
}

void ProcessCharInfo::TakeLevels() {
  const unsigned k0 = first.reader.key;
  const unsigned k1 = second.reader.key;
  if (wildcards_ && second.reader.order == question_) {
    primary = first.reader.order != 0 ? 0 : -1;
  } else {
    primary = NxPrimaryDifference(k0, k1);
    if (letterCase == 0) letterCase = NxCaseDifference(k0, k1);
    if (const int difference = NxAccentDifference(k0, k1)) accent = difference;
  }
  if (stepIgnorable_ != 0) ignorable = stepIgnorable_;
}

/// After a mismatch behind a star the match goes on from the earliest node, or begins
/// anew behind the star.
void ProcessCharInfo::MoveMatch() {
  if (!IsStarPending() || first.reader.order == 0) return;
  const bool noCase = IsIgnored(kIgnoreCase);
  const bool noAccents = IsIgnored(kIgnoreAccents);
  const int mismatch = noCase && noAccents ? primary
                       : noAccents         ? letterCase
                       : noCase            ? accent
                                           : letterCase | accent;
  if (mismatch == 0) return;
  const Restart& restart = nodeHead_ < nodeEnd_ ? nodes_[nodeHead_++] : afterStar_;
  second = restart.side;
  accent = restart.accent;
  letterCase = restart.letterCase;
  primary = 0;
}

void ProcessCharInfo::Report() const {
  if (!outPos_ || !IsIgnored(kSkipSpaces)) return;
  if (len_ >= 0 && first.count <= limit_ && second.count <= limit_) *outPos_ = primary;
}

int ProcessCharInfo::Result() const {
  if (primary != 0) return primary;
  if (accent != 0 && !IsIgnored(kIgnoreAccents)) return accent;
  if (letterCase != 0 && !IsIgnored(kIgnoreCase)) return letterCase;
  return ignorable;
}

// ---------------------------------------------------------------------------
// NxStrCmp

namespace {

/// Order values alone: the first difference of two keys decides.
int CompareOrderValues(NxOrderReader a, NxOrderReader b, short len) {
  unsigned rounds = static_cast<unsigned short>(len);
  do {
    a.Next(1);
    b.Next(1);
    if (a.key != b.key) return static_cast<int>(a.key - b.key);
  } while (a.order != 0 && b.order != 0 && --rounds != 0);
  return 0;
}

int CompareByReaders(const NxComparedText& a, const NxComparedText& b, unsigned short op, short len,
                     unsigned char byteOrder, int* outPos, bool plain) {
  const NxOrderTable* tableA = plain ? NxOrderTable::Find(a.codeSet, a.language) : nullptr;
  const NxOrderTable* tableB = plain ? NxOrderTable::Find(b.codeSet, b.language) : nullptr;
  if (a.codeSet == kCodeSetOrderValues || b.codeSet == kCodeSetOrderValues) tableA = tableB = nullptr;
  const NxOrderReader first(a.text, a.codeSet, a.language, byteOrder, tableA);
  const NxOrderReader second(b.text, b.codeSet, b.language, byteOrder, tableB);
  if (op & kOrderValuesOnly) return CompareOrderValues(first, second, len);
  return ProcessCharInfo(first, second, op, len, outPos).Run();
}

/// `plain` allows the plain walk before the level comparison.
int CompareTexts(NxComparedText a, NxComparedText b, unsigned short op, short len, unsigned char byteOrder,
                 int* outPos, bool plain) {
  const bool bytesDecide = (op & (kWildcardsOff | kOrderValuesOnly)) != 0;
  if (NxIsNullText(a.codeSet, a.language)) {
    if (NxIsNullText(b.codeSet, b.language)) return 0;
    if (bytesDecide) return -1;  // otherwise a pattern may match it
    if (!a.text) a.text = zeroString;
  } else if (NxIsNullText(b.codeSet, b.language)) {
    return 1;
  }
  if (len == 0) return 0;
  if (a.codeSet == kCodeSetNone && b.codeSet == kCodeSetNone) {
    if (bytesDecide) return nxstrcmp(a.text, b.text, len == -1 ? 0 : static_cast<unsigned short>(len));
    return nxstrwild(b.text, a.text, len == -1 ? 0 : static_cast<unsigned short>(len));
  }
  if (a.codeSet == kCodeSetNone) a.codeSet = NxLanguageContext::GetNativeCodeSet();
  if (b.codeSet == kCodeSetNone) b.codeSet = NxLanguageContext::GetNativeCodeSet();
  if (!a.text) a.text = zeroString;
  if (!b.text) b.text = zeroString;
  int result;
  if (plain && !(op & kOrderValuesOnly) && NxComparePlain(a, b, op, len, byteOrder, outPos, result))
    return result;
  return CompareByReaders(a, b, op, len, byteOrder, outPos, plain);
}

}  // namespace

int NxStrCmpAny(unsigned char cs1, unsigned char lang1, const char* s1, unsigned char cs2,
                unsigned char lang2, const char* s2, unsigned short op, short len, unsigned char byteOrder,
                int* outPos) {
  return CompareTexts({cs1, lang1, s1}, {cs2, lang2, s2}, op, len, byteOrder, outPos, true);
}

int NxStrCmpGeneral(unsigned char cs1, unsigned char lang1, const char* s1, unsigned char cs2,
                    unsigned char lang2, const char* s2, unsigned short op, short len,
                    unsigned char byteOrder, int* outPos) {
  return CompareTexts({cs1, lang1, s1}, {cs2, lang2, s2}, op, len, byteOrder, outPos, false);
}
