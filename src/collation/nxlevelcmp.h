// The comparison of two texts by the level rule, with wildcards: the general algorithm,
// which serves every text. The roads that take less time are tested against it.
#ifndef NXLEVELCMP_H
#define NXLEVELCMP_H

#include <limits>
#include <memory>

#include "collation/nxlevels.h"
#include "collation/nxordertable.h"

/// One comparison of a text with another, or with a pattern, by the level rule.
///
/// Without a star in the pattern the comparison goes in rounds: each reads a pair and
/// takes in what it differs in (nxlevels.h). A "?" is equal to any character. A "*"
/// matches any run of characters, so that the pattern's part behind it may match the text
/// from any later place. From then on no character is passed over; the first character
/// behind the star is kept, and at every place of the text where it occurs the part could
/// begin. The earliest of these places is the match that goes on, in the side `second`.
/// The later ones are nodes of a list, each with its own place in the pattern, advanced
/// by every round along with the text and dropped at the first mismatch. When the match
/// itself ends in a mismatch, the first node that is left takes its place, and when there
/// is none the pattern starts again behind the star. A further "*" empties the list: what
/// the pattern has matched before it stays matched.
class ProcessCharInfo {
 public:
  static constexpr unsigned short kFirst = 0;   // sides of ProcessChar: the text
  static constexpr unsigned short kSecond = 1;  // the text compared with, or pattern
  static constexpr unsigned short kNode = 2;    // the node that is being advanced
  static constexpr unsigned kNoLimit = std::numeric_limits<unsigned>::max();

  /// A place in one of the texts.
  struct Side {
    NxOrderReader reader;
    unsigned count = 0;            // characters read
    unsigned short ignorable = 0;  // the ignorable character of this round
  };

  ProcessCharInfo(const NxOrderReader& first, const NxOrderReader& second, unsigned short op, short len,
                  int* outPos);

  int Run() {
    while (!Round()) {
    }
    return Result();
  }
  /// Compares one pair of characters; true at the end of the comparison.
  bool Round();
  /// What the levels say when the rounds have ended.
  int Result() const;

  /// Reads a side up to the next character to be compared or recorded. 1 when that is
  /// an ignorable one that counts, else 0; `stop` is set at a wildcard.
  unsigned short ProcessChar(unsigned short side, unsigned short updateCollation, unsigned short& stop);

  bool IsStarPending() const { return pending_ != 0; }

  Side first;
  Side second;
  int primary = 0;  // of the base letters: the running result
  NxLevels levels;  // what the lesser levels say

 private:
  /// A place of the pattern from which the match can go on.
  struct Restart {
    Side side;
    NxLevels levels;
  };

  void Advance();
  void AddNode();
  bool PassAsterisks();
  void AdvanceNodes();
  void TakeLevels();
  void MoveMatch();
  void Report() const;
  bool IsIgnored(unsigned short bit) const { return (op_ & bit) != 0; }
  unsigned MaskedKey(const Side& side) const { return side.reader.key & mask_; }

  const unsigned short op_;
  const short len_;
  const unsigned limit_;  // characters read per side
  int* const outPos_;
  const bool wildcards_;
  const unsigned short update_;  // collation selectors follow the text
  const unsigned short asterisk_;
  const unsigned short question_;
  const unsigned mask_;  // the bits of a key that count after a star

  Side* node_ = nullptr;   // side kNode of ProcessChar
  int stepIgnorable_ = 0;  // difference of the ignorable characters of this round
  unsigned pending_ = 0;   // masked key of the first character after the star
  bool pendingQuestion_ = false;
  Restart afterStar_;

  std::unique_ptr<Restart[]> nodes_;  // in order of their making
  unsigned nodeHead_ = 0;
  unsigned nodeEnd_ = 0;
  unsigned nodeCapacity_ = 0;
};

#endif
