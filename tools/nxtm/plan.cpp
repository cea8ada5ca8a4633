// The planner: which indexes a condition can go through, and the scan between their
// bounds. Every record that a scan yields is tested with the whole condition, so
// bounds need only be wide enough.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "failure.h"
#include "nxlang.h"
#include "query.h"

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

/// A text without the characters that the comparison skips: the index does not skip
/// them, and words without them may sort before those with them.
Image WithoutSkipped(const Term& term) {
  if (!(term.options & (kSkipSpaces | kSkipSymbols))) return term.key;
  NxString s = LoadString(term.key);
  for (unsigned short i = 0; i < s.Len();) {
    unsigned short order = s[i].GetOrder();
    bool space = order < kFirstSymbolOrder, symbol = !space && order < kFirstDigitOrder;
    bool wildcard = !(term.options & kWildcardsOff) && IsWildcard(order);
    bool skipped =
        !wildcard && ((space && (term.options & kSkipSpaces)) || (symbol && (term.options & kSkipSymbols)));
    if (skipped)
      s.Cut(i, 1);
    else
      ++i;
  }
  Image image(s._nSize + 8U, '\0');
  image.resize(static_cast<unsigned>(StringStore(image.data(), &s, kFormatNative, 1)));
  return image;
}

/// Whether equal texts hash alike for this key. Symbols and spaces may stand in for
/// one another in texts that compare equal; a key without any has only itself.
bool HashFinds(const Term& term, char type) {
  if (term.relation != kRelationEqual) return false;
  if (type == 3 || type == 4) return false;  // double, float: -0 equals 0 and hashes differently
  if (!IsText(type)) return true;
  if (type != kStringTypeId || (term.options & ~kWildcardsOff)) return false;
  NxString s = LoadString(term.key);
  for (NxStringIterator it(s); !it.IsEOS();)
    if (it.GetNextOrder(1) < kFirstDigitOrder) return false;
  return true;
}

bool HasWildFields(const Term& term, char type) {
  if (std::strcmp(Manager().NameGet(type, nullptr), "NxDate") != 0) return false;
  NxDate date(0L);
  DateLoad(&date, term.key.data(), kFormatNative, 1);
  return date.year == -1 || date.month == -1 || date.day == -1;
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
    if (hash && HashFinds(term, type) && !HasWildFields(term, type)) {
      RequireCurrent(store_, *hash);
      Access access;
      access.term = &term;
      access.index = *hash;
      access.fraction = 1.0 / static_cast<double>(std::max(1UL, store_.Count()));
      report_.considered.push_back(access);
      return {access};
    }
    const IndexInfo* ordered = store_.FindIndex(term.attribute, false);
    if (!ordered || (IsText(type) && IsCut(OrderedKey(type, term.key)))) return {};
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

unsigned int ToNumber(const Store& store, const MDB_val& data) {
  unsigned int number = 0;
  if (data.mv_size == sizeof number) std::memcpy(&number, data.mv_data, sizeof number);
  if (data.mv_size != sizeof number || number >= store.Count())
    throw Failure(store.Path() + ": an index names a record that is not there");
  return number;
}

/// Collects the record numbers behind the keys of an access.
void Scan(Store& store, Access& access, std::vector<unsigned int>& numbers) {
  MDB_dbi table = store.IndexTable(access.index, false);
  Cursor cursor(store, table);
  char type = store.GetSchema().Columns()[access.index.attribute].type;
  MDB_val key{}, data;
  unsigned int hash = 0;
  bool found;
  if (access.index.hash) {
    hash = HashKey(type, access.term->key);
    key = ValOf(hash);
    found = cursor.Get(key, data, MDB_SET_KEY);
  } else if (access.lower.empty()) {
    found = cursor.Get(key, data, MDB_FIRST);
  } else {
    key = Val(access.lower);
    found = cursor.Get(key, data, MDB_SET_RANGE);
  }
  MDB_val upper = Val(access.upper);
  for (; found; found = cursor.Get(key, data, access.index.hash ? MDB_NEXT_DUP : MDB_NEXT)) {
    if (!access.upper.empty() && mdb_cmp(store.Txn(), table, &key, &upper) > 0) break;
    ++access.entriesRead;
    numbers.push_back(ToNumber(store, data));
  }
  if (access.index.hash || !IsText(type)) return;
  Cursor apart(store, store.ApartTable(access.index, false));
  for (; apart.Get(key, data, MDB_NEXT); ++access.entriesRead) numbers.push_back(ToNumber(store, key));
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
  Image key = type == kStringTypeId ? WithoutSkipped(term) : term.key;
  NxIdxBounds range{low.data(), high.data(), static_cast<unsigned char>(low.size()),
                    static_cast<unsigned char>(high.size())};
  NxIdxBounds bounds{};
  auto relation = static_cast<unsigned short>(term.relation | term.options);
  float fraction =
      Manager().EvalAndBound(type, &range, relation, key.data(), kFormatNative, 1, &bounds, nullptr);
  access.fraction = std::isnan(fraction) ? 1.0 : std::clamp(static_cast<double>(fraction), 0.0, 1.0);
  access.lower = TakeBound(bounds.lower, bounds.lowerLen);
  access.upper = TakeBound(bounds.upper, bounds.upperLen);
  return access;
}

QueryReport RunQuery(Store& store, const Condition& condition, bool scan,
                     const std::function<void(unsigned int, const std::vector<Field>&)>& onRecord) {
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
