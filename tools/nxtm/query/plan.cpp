// The planner: which indexes a condition can go through, and the scan between their
// bounds. Every record that a scan yields is tested with the whole condition, so
// bounds need only be wide enough.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "data/failure.h"
#include "nxlang.h"
#include "query/query.h"

namespace nxtm {

namespace {

/// Smallest and largest key of an ordered index; false for an empty one.
bool IndexRange(Store& store, MDB_dbi table, Image& low, Image& high) {
  Cursor cursor(store, table);
  MDB_val key, data;
  if (!cursor.Get(key, data, MDB_FIRST)) return false;
  low = Image(View(key));
  cursor.Get(key, data, MDB_LAST);
  high = Image(View(key));
  return true;
}

NxString LoadString(const Image& image) {
  NxString s;
  StringLoad(&s, image.data(), kFormatNative, 1);
  return s;
}

bool IsWildcard(unsigned short order) {
  return order == NxString::GetAsterisk() || order == NxString::GetQuestion();
}

bool IsActiveWildcard(const Term& term, unsigned short order) {
  return !(term.options & kWildcardsOff) && IsWildcard(order);
}

/// A term of a text whose bounds hold every text that the given one may select.
///
/// Symbols and spaces decide last in the index, and by rules of their own: without them
/// a bound sorts before all texts that have the same letters. Behind these texts it is
/// a star that takes the bound. Where there are none, and none are skipped, the term
/// serves as it is.
Term Widened(const Term& term) {
  NxString s = LoadString(term.key);
  bool hasWildcard = false;
  bool widened = (term.options & (kSkipSpaces | kSkipSymbols)) != 0;
  for (unsigned short i = 0; i < s.Len();) {
    NxStringIterator it(s[i]);
    unsigned short order = it.GetNextOrder(1);
    bool wildcard = IsActiveWildcard(term, order);
    bool plain = it._nCollation >= kPlainOrderSelector;
    hasWildcard = hasWildcard || wildcard;
    if (wildcard || plain || order >= kFirstDigitOrder) {
      ++i;
    } else {
      s.Cut(i, 1);
      widened = true;
    }
  }
  Term result = term;
  if (!widened) return result;
  if (!hasWildcard) {
    s += NxString("*");
    result.options &= static_cast<unsigned short>(~kWildcardsOff);
  }
  result.key.resize(s._nSize + 8U);
  result.key.resize(static_cast<unsigned>(StringStore(result.key.data(), &s, kFormatNative, 1)));
  return result;
}

/// Whether equal texts hash alike for this key. Symbols and spaces may stand in for
/// one another in texts that compare equal; a key without any has only itself.
bool HashFinds(const Term& term, char type) {
  if (term.relation != kRelationEqual) return false;
  const Kind kind = FormOf(type).kind;
  if (kind == Kind::kReal) return false;
  if (kind == Kind::kDate) return term.options & kWildcardsOff;
  if (!IsText(kind)) return true;
  if (type != kStringTypeId || (term.options & ~kWildcardsOff)) return false;
  NxString s = LoadString(term.key);
  for (NxStringIterator it(s); !it.IsEOS();)
    if (it.GetNextOrder(1) < kFirstDigitOrder) return false;
  return true;
}

Image TakeBound(void* bound, unsigned char length) {
  Image image(static_cast<const char*>(bound), bound ? length : 0);
  std::free(bound);
  return image;
}

class Planner {
 public:
  Planner(Store& store, QueryReport& report) : store_(store), report_(report) {}

  /// The accesses that together yield every record of the condition; none when only
  /// reading all records does.
  std::vector<Access> Plan(const Condition& condition) {
    switch (condition.kind) {
      case Condition::Kind::kTerm:
        return PlanTerm(condition.term);
      case Condition::Kind::kAnd:
        return PlanBest(condition.parts);
      default:
        return PlanUnion(condition.parts);
    }
  }

  static double Fraction(const std::vector<Access>& accesses) {
    double sum = 0;
    for (const Access& access : accesses) sum += access.fraction;
    return sum;
  }

 private:
  std::vector<Access> PlanTerm(const Term& term) {
    if (term.relation == 0) return {};
    char type = store_.GetSchema().Columns()[term.attribute].type;
    const IndexInfo* hash = store_.FindIndex(term.attribute, true);
    if (hash && HashFinds(term, type)) {
      RequireCurrent(store_, *hash);
      Access access;
      access.term = &term;
      access.index = *hash;
      access.fraction = 1.0 / static_cast<double>(std::max(1UL, store_.Count()));
      report_.considered.push_back(access);
      return {access};
    }
    const IndexInfo* ordered = store_.FindIndex(term.attribute, false);
    // Of any year there may be dates outside of the bounds that the type gives.
    if (!ordered || term.anyYear || (IsText(type) && IsCut(OrderedKey(type, term.key)))) return {};
    RequireCurrent(store_, *ordered);
    Access access = BoundTerm(store_, term, *ordered);
    report_.considered.push_back(access);
    if (access.lower.empty() && access.upper.empty()) return {};
    return {access};
  }

  std::vector<Access> PlanBest(const std::vector<Condition>& parts) {
    std::vector<Access> best;
    for (const Condition& part : parts) {
      std::vector<Access> accesses = Plan(part);
      if (!accesses.empty() && (best.empty() || Fraction(accesses) < Fraction(best))) best = accesses;
    }
    return best;
  }

  std::vector<Access> PlanUnion(const std::vector<Condition>& parts) {
    std::vector<Access> all;
    for (const Condition& part : parts) {
      std::vector<Access> accesses = Plan(part);
      if (accesses.empty()) return {};
      all.insert(all.end(), accesses.begin(), accesses.end());
    }
    return all;
  }

  Store& store_;
  QueryReport& report_;
};

/// The smallest key in plain order; it sorts behind all keys in alphabetic order.
Image FirstPlainKey() { return Image("\x06\x00\xFE\x14\x01\x00\x00\xFF", 8); }

bool IsPlain(const Image& key) { return (static_cast<unsigned char>(key[3]) & 0x7F) >= kPlainOrderSelector; }

/// Reads an index from a key on, or from its first one for none, as long as `wanted` says of
/// a key, and one entry beside on either end: these tell that nothing was passed over.
template <class Wanted>
void ReadRange(Store& store, Access& access, MDB_val from, std::vector<unsigned int>& numbers,
               Wanted wanted) {
  const MDB_dbi table = store.IndexTable(access.index, false);
  Cursor cursor(store, table), before(store, table);
  EntryCheck check(store, access.index);
  MDB_val key = from, data;
  bool found = cursor.Get(key, data, from.mv_size == 0 ? MDB_FIRST : MDB_SET_RANGE);
  if (from.mv_size != 0) {
    MDB_val keyBefore = from, dataBefore;
    const bool placed = before.Get(keyBefore, dataBefore, MDB_SET_RANGE);
    if (before.Get(keyBefore, dataBefore, placed ? MDB_PREV : MDB_LAST)) {
      check.Take(keyBefore, dataBefore);
      if (mdb_cmp(store.Txn(), table, &keyBefore, &from) >= 0)
        throw Failure(store.Path() + ": an index is damaged; make it anew with: nxtm reindex " +
                      store.Path());
    }
  }
  for (; found; found = cursor.Get(key, data, MDB_NEXT)) {
    const unsigned int number = check.Take(key, data);
    if (!wanted(key)) return;
    ++access.entriesRead;
    numbers.push_back(number);
  }
}

/// Collects the record numbers behind the keys of an access.
void Scan(Store& store, Access& access, std::vector<unsigned int>& numbers) {
  const MDB_dbi table = store.IndexTable(access.index, false);
  const char type = store.GetSchema().Columns()[access.index.attribute].type;
  if (access.index.hash) {
    unsigned int hash = HashKey(type, access.term->key);
    const MDB_val wanted = ValOf(hash);
    ReadRange(store, access, wanted, numbers,
              [&](MDB_val key) { return mdb_cmp(store.Txn(), table, &key, &wanted) == 0; });
    return;
  }
  const MDB_val upper = Val(access.upper);
  ReadRange(store, access, Val(access.lower), numbers, [&](MDB_val key) {
    return access.upper.empty() || mdb_cmp(store.Txn(), table, &key, &upper) <= 0;
  });
  if (!IsText(type)) return;
  if (access.plainToo) {
    const Image first = FirstPlainKey();
    ReadRange(store, access, Val(first), numbers, [](MDB_val) { return true; });
  }
  Cursor apart(store, store.ApartTable(access.index, false));
  EntryCheck check(store, access.index);
  MDB_val key, data;
  for (; apart.Get(key, data, MDB_NEXT); ++access.entriesRead) numbers.push_back(check.TakeApart(key));
}

}  // namespace

Access BoundTerm(Store& store, const Term& term, const IndexInfo& index) {
  Access access;
  access.term = &term;
  access.index = index;
  char type = store.GetSchema().Columns()[term.attribute].type;
  Image low, high;
  if (!IndexRange(store, store.IndexTable(index, false), low, high)) {
    access.fraction = 0;
    return access;
  }
  Term bounded = type == kStringTypeId ? Widened(term) : term;
  NxIdxBounds range{low.data(), high.data(), static_cast<unsigned char>(low.size()),
                    static_cast<unsigned char>(high.size())};
  NxIdxBounds bounds{};
  auto relation = static_cast<unsigned short>(bounded.relation | bounded.options);
  float fraction =
      Manager().EvalAndBound(type, &range, relation, bounded.key.data(), kFormatNative, 1, &bounds, nullptr);
  access.fraction = std::isnan(fraction) ? 1.0 : std::clamp(static_cast<double>(fraction), 0.0, 1.0);
  access.lower = TakeBound(bounds.lower, bounds.lowerLen);
  access.upper = TakeBound(bounds.upper, bounds.upperLen);
  // The bounds of a pattern are those of its alphabetic part.
  access.plainToo = type == kStringTypeId && IsPlain(high) && !access.upper.empty() &&
                    ((relation & kWildcardFound) || !IsWhole(type, OrderedKey(type, bounded.key)));
  return access;
}

QueryReport RunQuery(Store& store, const Condition& condition, bool scan, const OnRecord& onRecord) {
  QueryReport report;
  const Schema& schema = store.GetSchema();
  std::vector<Field> fields;
  auto test = [&](unsigned int number, std::string_view record) {
    ++report.recordsRead;
    Record::Split(schema, record, fields);
    if (!condition.Matches(schema, fields)) return;
    ++report.found;
    onRecord(number, fields);
  };
  if (!scan) report.used = Planner(store, report).Plan(condition);
  if (report.used.empty()) {
    store.ForEach(test);
    return report;
  }
  std::vector<unsigned int> numbers;
  for (Access& access : report.used) Scan(store, access, numbers);
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  constexpr unsigned long kSparse = 8;
  if (numbers.size() < store.Count() / kSparse) {
    for (unsigned int number : numbers) test(number, store.Get(number));
    return report;
  }
  // So many are found sooner by passing over the others.
  auto next = numbers.begin();
  store.ForEach([&](unsigned int number, std::string_view record) {
    if (next == numbers.end() || *next != number) return;
    ++next;
    test(number, record);
  });
  return report;
}

}  // namespace nxtm
