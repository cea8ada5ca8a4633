/// Conditions on the records of a store, and the plan that finds the records.
///
///   word = "Haus*" and (length > 5 or note is null)
///   name = "muenchen" ignoring case, accents
///   born < 1960-01-01
///   name = "what?" literally
///
///   not (length between 3 and 5) and word in ("der", "die", "das")
///
/// Relations: = != < <= > >=; `in` a list, and `between` two values, which belong to it. `not`
/// selects what the condition behind it does not, but for nulls. Texts stand in quotes, which are doubled
/// inside. In a text "*" stands for any characters and "?" for one, unless `literally` follows; `ignoring`
/// takes case, accents, symbols and spaces. In a date "*" stands for any year, month or day. Null matches
/// nothing but `is null`.
#ifndef NXTM_QUERY_H
#define NXTM_QUERY_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "store/index.h"
#include "store/store.h"

namespace nxtm {

/// The relation whose sign begins a text, and the length of the sign; 0 for none.
unsigned short RelationAt(std::string_view text, unsigned long& length);

/// The order of two stored images that lie anywhere: negative, 0 or positive.
using CompareImages = long (*)(const char* a, const char* b);
/// The order that the manager's Cmp has under such options, for a type whose images compare
/// where they lie; null for the other types. Null values are not for it.
CompareImages InPlaceOrder(char type, unsigned short options);

/// One comparison of an attribute.
struct Term {
  unsigned long attribute = 0;
  unsigned short relation = 0;  // relation bits; 0 for a test of null
  unsigned short options = 0;
  Image key;                        // the value compared with, as a stored image
  CompareImages inPlace = nullptr;  // the order of its images; null: the manager is asked
  bool wantNull = false;            // of a test of null: whether null matches
  std::string text;                 // as it was written
};

/// A condition: a term, or conditions joined.
struct Condition {
  enum class Kind { kTerm, kAnd, kOr } kind = Kind::kTerm;
  Term term;
  std::vector<Condition> parts;

  /// Throws a Failure that names the place in the text and what was expected there.
  static Condition Parse(const std::string& text, const Schema& schema);
  bool Matches(const Schema& schema, RecordReader& record) const;
};

/// A way through an index to the records that a term may select, or several terms that all
/// have to.
struct Access {
  std::vector<const Term*> terms;
  IndexInfo index;
  double fraction = 1.0;     // estimated part of the index, 0 to 1
  std::string lower, upper;  // keys of the entries: from, and below; empty when open
  unsigned long entriesRead = 0;

  bool IsFor(const Term* term) const;
};

/// What a query read and found.
struct QueryReport {
  std::vector<Access> considered;  // every indexed term's estimate
  std::vector<Access> used;        // none: all records were read
  unsigned long recordsRead = 0;
  unsigned long found = 0;
};

/// Gets a record that was found; false ends the query. The fields are valid during the call.
using OnRecord = std::function<bool(unsigned int number, const std::vector<Field>& fields)>;
/// Runs a condition; onRecord gets the records found, in order of number. With `scan` no
/// index is used.
QueryReport RunQuery(Store& store, const Condition& condition, bool scan, const OnRecord& onRecord);

/// Bounds and estimate of a term on an ordered index. A term that selects no range of the
/// index has no bounds.
Access BoundTerm(const Store& store, const Term& term, const IndexInfo& index);

}  // namespace nxtm

#endif
