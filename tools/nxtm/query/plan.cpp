// The planner: which indexes a condition can go through, and the scan between their
// bounds. Every record that a scan yields is tested with the whole condition, so
// bounds need only be wide enough.

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "data/failure.h"
#include "nxsortkey.h"
#include "query/query.h"

namespace nxtm {

namespace {

NxString LoadString(const Image& image) {
  NxString s;
  StringLoad(&s, image.data(), kFormatNative, 1);
  return s;
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

/// What lies behind all entries whose order key is this one, whatever their numbers.
std::string BehindAllOf(std::string key) { return key.append(sizeof(unsigned int) + 1, '\xFF'); }

/// The bounds of sort keys as bounds of entries, which are cut and have a number behind them.
void TakeBounds(Access& access, const NxSortKeyRange& range) {
  access.lower.assign(static_cast<const char*>(range.lower), range.lower ? range.lowerLength : 0);
  access.upper.assign(static_cast<const char*>(range.upper), range.upper ? range.upperLength : 0);
  access.lower.resize(std::min<unsigned long>(access.lower.size(), kLongestSortKey));
  if (access.upper.size() > kLongestSortKey)
    access.upper = BehindAllOf(access.upper.substr(0, kLongestSortKey));
  else if (!access.upper.empty() && access.upper.back() == 0)  // a key is the last one that counts
    access.upper = BehindAllOf(access.upper.substr(0, access.upper.size() - 1));
}

/// The part of an index that a term selects, as the library estimates it.
double Estimate(char type, const Term& term, IndexInfo index) {
  if (index.entries == 0) return 0;
  Image &low = index.low.keyImage, &high = index.high.keyImage;
  const NxIdxBounds ends{low.data(), high.data(), static_cast<unsigned char>(low.size()),
                         static_cast<unsigned char>(high.size())};
  NxIdxBounds range = ends, bounds{};
  Image key = term.key;
  auto relation = static_cast<unsigned short>(term.relation | term.options);
  // Of an estimate alone an odd condition is no news to the user.
  const NxAssertHandler before = NxSetAssertHandler([](const char*, const char*, int) {});
  const float fraction =
      Manager().EvalAndBound(type, &range, relation, key.data(), kFormatNative, 1, &bounds, nullptr);
  NxSetAssertHandler(before);
  std::free(bounds.lower);
  std::free(bounds.upper);
  return std::isnan(fraction) ? 1.0 : std::clamp(static_cast<double>(fraction), 0.0, 1.0);
}

/// Narrows an access to what another one of the same index has, too.
void Narrow(Access& access, const Access& other) {
  access.terms.insert(access.terms.end(), other.terms.begin(), other.terms.end());
  access.lower = std::max(access.lower, other.lower);
  if (access.upper.empty() || (!other.upper.empty() && other.upper < access.upper))
    access.upper = other.upper;
  access.fraction = std::max(0.0, access.fraction + other.fraction - 1);
}

class Planner {
 public:
  Planner(const Store& store, QueryReport& report) : store_(store), report_(report) {}

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

 private:
  static double Fraction(const std::vector<Access>& accesses) {
    double sum = 0;
    for (const Access& access : accesses) sum += access.fraction;
    return sum;
  }

  std::vector<Access> PlanTerm(const Term& term) {
    if (term.relation == 0) return {};
    const char type = store_.GetSchema().Columns()[term.attribute].type;
    const IndexInfo* const hash = store_.FindIndex(term.attribute, true);
    if (hash && HashFinds(term, type)) {
      RequireCurrent(store_, *hash);
      Access access;
      access.terms = {&term};
      access.index = *hash;
      access.fraction = 1.0 / static_cast<double>(std::max(1UL, store_.Count()));
      access.lower = HashKeyOf(type, term.key);
      access.upper = BehindAllOf(access.lower);
      report_.considered.push_back(access);
      return {access};
    }
    const IndexInfo* const ordered = store_.FindIndex(term.attribute, false);
    if (!ordered) return {};
    RequireCurrent(store_, *ordered);
    const Access access = BoundTerm(store_, term, *ordered);
    report_.considered.push_back(access);
    if (access.lower.empty() && access.upper.empty()) return {};
    return {access};
  }

  std::vector<Access> PlanBest(const std::vector<Condition>& parts) {
    std::vector<std::vector<Access>> plans;
    for (const Condition& part : parts) {
      const std::vector<Access> plan = Plan(part);
      if (plan.empty()) continue;
      const auto same = std::find_if(plans.begin(), plans.end(), [&](const std::vector<Access>& other) {
        return plan.size() == 1 && other.size() == 1 && !plan[0].index.hash &&
               plan[0].index.table == other[0].index.table;
      });
      if (same == plans.end())
        plans.push_back(plan);
      else
        Narrow((*same)[0], plan[0]);
    }
    const auto best = std::min_element(
        plans.begin(), plans.end(), [](const auto& a, const auto& b) { return Fraction(a) < Fraction(b); });
    return best == plans.end() ? std::vector<Access>() : *best;
  }

  std::vector<Access> PlanUnion(const std::vector<Condition>& parts) {
    std::vector<Access> all;
    for (const Condition& part : parts) {
      const std::vector<Access> accesses = Plan(part);
      if (accesses.empty()) return {};
      all.insert(all.end(), accesses.begin(), accesses.end());
    }
    return all;
  }

  const Store& store_;
  QueryReport& report_;
};

/// An entry and the access that read it.
struct Hit {
  Entry entry;
  const Access* access;
};

/// What the accesses read, in order of the records' numbers.
std::vector<Hit> ReadHits(Store& store, std::vector<Access>& accesses) {
  std::vector<Hit> hits;
  std::vector<Entry> entries;
  for (Access& access : accesses) {
    entries.clear();
    if (access.upper.empty() || access.lower < access.upper)
      access.entriesRead = ReadEntries(store, access.index, access.lower, access.upper, entries);
    for (const Entry& entry : entries) hits.push_back({entry, &access});
  }
  std::stable_sort(hits.begin(), hits.end(),
                   [](const Hit& a, const Hit& b) { return a.entry.number < b.entry.number; });
  return hits;
}

}  // namespace

bool Access::IsFor(const Term* term) const {
  return std::find(terms.begin(), terms.end(), term) != terms.end();
}

Access BoundTerm(const Store& store, const Term& term, const IndexInfo& index) {
  Access access;
  access.terms = {&term};
  access.index = index;
  const char type = store.GetSchema().Columns()[term.attribute].type;
  access.fraction = Estimate(type, term, index);
  NxSortKeyRange range;
  const auto relation = static_cast<unsigned short>(term.relation | term.options);
  if (!NxSortKeyBounds(type, term.key.data(), kFormatNative, term.key.size(), relation, range)) return access;
  TakeBounds(access, range);
  std::free(range.lower);
  std::free(range.upper);
  return access;
}

QueryReport RunQuery(Store& store, const Condition& condition, bool scan, const OnRecord& onRecord) {
  QueryReport report;
  const Schema& schema = store.GetSchema();
  RecordReader reader(schema);
  const auto test = [&](unsigned int number, std::string_view record) {
    ++report.recordsRead;
    reader.Begin(record);
    if (!condition.Matches(schema, reader)) return true;
    ++report.found;
    return onRecord(number, reader.All());
  };
  if (!scan) report.used = Planner(store, report).Plan(condition);
  if (report.used.empty()) {
    store.ForEach(test);
    return report;
  }
  const std::vector<Hit> hits = ReadHits(store, report.used);
  std::vector<unsigned int> numbers;
  for (const Hit& hit : hits)
    if (numbers.empty() || numbers.back() != hit.entry.number) numbers.push_back(hit.entry.number);
  auto next = hits.begin();
  const auto testHit = [&](unsigned int number, std::string_view record) {
    for (; next != hits.end() && next->entry.number == number; ++next)
      RequireEntry(store, next->access->index, next->entry, record);
    return test(number, record);
  };
  constexpr unsigned long kSparse = 8;
  if (numbers.size() - store.Copies() <= store.Count() / kSparse) {
    store.GetMany(numbers, testHit);
    return report;
  }
  // So many are found sooner by passing over the others.
  store.ForEach([&](unsigned int number, std::string_view record) {
    if (next == hits.end()) return false;
    return next->entry.number != number || testHit(number, record);
  });
  return report;
}

}  // namespace nxtm
