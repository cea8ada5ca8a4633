// The level comparison, step by step.

#include "collation/nxlevelcmp.h"

#include <algorithm>
#include <utility>

#include "base/nxalloc.h"
#include "nxstring.h"

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
      mask_(NxLevels::CountingBits(op)) {}

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
    if (!NxLevels::IsIgnorable(order, reader.it._nCollation)) return 0;
    if (NxLevels::IsSkipped(order, op_)) continue;
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
  nodes_[nodeEnd_++] = {afterStar_.side, levels};
}

/// Takes the pattern to the first character after its stars; true when it ends there,
/// since the star then matches the rest of the text.
bool ProcessCharInfo::PassAsterisks() {
  nodeHead_ = nodeEnd_ = 0;
  afterStar_.levels = levels;
  unsigned short stop = 0;
  do {
    afterStar_.side = second;
    ProcessChar(kSecond, update_, stop);
  } while (second.reader.order == asterisk_);
  if (second.reader.order == 0) {
    levels.TakeIgnorables(stepIgnorable_);
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
    primary = NxLevels::OfBaseLetters(k0, k1);
    levels.TakePair(k0, k1);
  }
  levels.TakeIgnorables(stepIgnorable_);
}

/// After a mismatch behind a star the match goes on from the earliest node, or begins
/// anew behind the star.
void ProcessCharInfo::MoveMatch() {
  if (!IsStarPending() || first.reader.order == 0) return;
  const bool noCase = IsIgnored(kIgnoreCase);
  const bool noAccents = IsIgnored(kIgnoreAccents);
  const int mismatch = noCase && noAccents ? primary
                       : noAccents         ? levels.letterCase
                       : noCase            ? levels.accent
                                           : levels.letterCase | levels.accent;
  if (mismatch == 0) return;
  const Restart& restart = nodeHead_ < nodeEnd_ ? nodes_[nodeHead_++] : afterStar_;
  second = restart.side;
  levels.ReturnTo(restart.levels);
  primary = 0;
}

void ProcessCharInfo::Report() const {
  if (!outPos_ || !IsIgnored(kSkipSpaces)) return;
  if (len_ >= 0 && first.count <= limit_ && second.count <= limit_) *outPos_ = primary;
}

int ProcessCharInfo::Result() const { return primary != 0 ? primary : levels.Result(op_); }
